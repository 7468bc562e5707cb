// corvalis-settings: the window in which the user edits the Corvalis settings.

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QTextStream>

#include "app/settings/FirstFrameProbe.h"
#include "app/settings/HostWindow.h"
#include "app/settings/TerminationSignals.h"

using namespace corvalis;

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName("corvalis-settings");
    QApplication::setOrganizationName("Kestrova");
    // Without a desktop session (offscreen, bare X servers) no theme is set, or only the bare
    // "hicolor" one, which lacks the places and commands the menus show: Adwaita stands in.
    QIcon::setThemeSearchPaths(QIcon::themeSearchPaths() << "/usr/share/icons");
    QIcon::setFallbackThemeName("Adwaita");
    if (QIcon::themeName().isEmpty() || QIcon::themeName() == "hicolor") QIcon::setThemeName("Adwaita");

    QCommandLineParser options;
    options.setApplicationDescription("The Corvalis settings window.");
    options.addHelpOption();
    QCommandLineOption screenshot("screenshot", "Show each tab and sheet in turn, write one PNG per view into DIR, and quit.",
                                  "DIR");
    options.addOption(screenshot);
    QCommandLineOption firstFrame("first-frame", "Print the milliseconds from start to the first painted frame, and quit.");
    options.addOption(firstFrame);
    options.process(app);

    QTextStream err(stderr);
    HostWindow window;
    QString error;
    QString plugin = findPanePlugin();
    if (!window.loadPane(plugin, &error)) {
        err << "corvalis-settings: the settings pane could not be loaded from " << plugin << ": " << error << "\n";
        return 1;
    }
    if (options.isSet(firstFrame)) new FirstFrameProbe(&window);
    TerminationSignals sessionEnd;
    QObject::connect(&sessionEnd, &TerminationSignals::received, &window, &HostWindow::closeForSessionEnd);
    window.showAndSelect();
    if (options.isSet(screenshot)) {
        QString folder = options.value(screenshot);
        int written = window.writeScreenshots(folder);
        QTextStream(stdout) << "corvalis-settings: wrote " << written << " screenshots to " << folder << "\n";
        window.close();
        return written > 0 ? 0 : 1;
    }
    return QApplication::exec();
}
