// The plugin the settings host loads: its root object makes the pane.

#include <QObject>

#include "pane/ui/CorvalisPane.h"

namespace corvalis {

class CorvalisPanePlugin : public QObject, public PreferencePanePlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID CorvalisPreferencePanePlugin_iid)
    Q_INTERFACES(corvalis::PreferencePanePlugin)

public:
    PreferencePane* createPane(QWidget* window) override { return new ComKestrovaCorvalis_PrefsPane(window, this); }
};

}  // namespace corvalis

#include "PanePlugin.moc"
