#include <gtest/gtest.h>

#include <QApplication>

// Widget tests need the application object before any fixture builds a widget.
// They draw offscreen unless told otherwise, so they run the same with or without a display.
int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
