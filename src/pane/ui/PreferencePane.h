#pragma once
// What the settings host asks of a pane loaded from a plugin: the main view and
// the select/unselect life cycle, in the order a system settings application
// drives its panes.

#include <QtPlugin>
#include <QString>
#include <QStringList>

class QWidget;

namespace corvalis {

class PreferencePane {
public:
    enum class UnselectReply { Cancel, Now, Later };

    virtual ~PreferencePane() = default;

    // The pane's name as the host shows it, in the user's language.
    virtual QString label() const = 0;

    // Makes the main view (once), sets it up, and runs mainViewDidLoad.
    virtual QWidget* loadMainView() = 0;
    virtual QWidget* mainView() const = 0;
    virtual void willSelect() = 0;
    virtual void didSelect() = 0;
    virtual UnselectReply shouldUnselect() = 0;
    virtual void willUnselect() = 0;
    virtual void didUnselect() = 0;

    // For --screenshot: the views the pane can show, and showing one of them
    // (a tab or a sheet) so the host can grab the window.
    virtual QStringList screenshotViews() const = 0;
    virtual bool showScreenshotView(const QString& name) = 0;
};

// The root object of the pane's plugin.
class PreferencePanePlugin {
public:
    virtual ~PreferencePanePlugin() = default;
    // `window` is the host window the pane's view and sheets belong to.
    virtual PreferencePane* createPane(QWidget* window) = 0;
};

}  // namespace corvalis

#define CorvalisPreferencePanePlugin_iid "com.kestrova.Corvalis.PreferencePanePlugin/1.0"
Q_DECLARE_INTERFACE(corvalis::PreferencePanePlugin, CorvalisPreferencePanePlugin_iid)
