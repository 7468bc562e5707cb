#pragma once
// The settings window: hosts one pane and drives its life cycle as a system
// settings application does (select when shown, ask before closing).

#include <QMainWindow>

namespace corvalis {

class PreferencePane;

class HostWindow : public QMainWindow {
    Q_OBJECT

public:
    HostWindow();

    // Loads the pane from the plugin found at `pluginPath`; false with `error` set on failure.
    bool loadPane(const QString& pluginPath, QString* error);
    // Hosts a pane made elsewhere (tests); loadPane ends here too.
    void setPane(PreferencePane* pane);
    PreferencePane* pane() const { return pane_; }
    // Shows the window and selects the pane.
    void showAndSelect();
    // Writes a PNG of every view the pane offers into `folder`; returns how many were written.
    int writeScreenshots(const QString& folder);

public slots:
    // The session ends (SIGTERM, SIGINT): open sheets are cancelled and the window closes the way
    // the close button closes it; should the pane still refuse, the application quits all the same.
    void closeForSessionEnd();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    PreferencePane* pane_ = nullptr;
    bool selected_ = false;
};

// Where the pane's plugin is: $CORVALIS_PANE_PLUGIN, else beside the program (../lib/corvalis/).
QString findPanePlugin();

}  // namespace corvalis
