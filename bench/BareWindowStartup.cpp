// The reference for the settings window's start-up: a bare Qt window with one
// label, timed from process start to its first paint the same way.

#include <QApplication>
#include <QLabel>
#include <QMainWindow>

#include "app/settings/FirstFrameProbe.h"

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QMainWindow window;
    window.setCentralWidget(new QLabel("Corvalis"));
    window.resize(720, 520);
    new corvalis::FirstFrameProbe(&window);
    window.show();
    return QApplication::exec();
}
