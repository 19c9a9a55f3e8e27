// The main of every test program that needs Qt widgets: Qt's offscreen platform unless the
// environment names another (a run under Xvfb sets QT_QPA_PLATFORM=xcb), a QApplication on the
// main thread, then GoogleTest.
#include <cstdlib>

#include <QApplication>

#include <gtest/gtest.h>

#include <kelcore/threads/MainThread.h>

int main(int argc, char** argv) {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    // Tests see one light, predictable look whatever the desktop says; dark tests set their own.
    ::setenv("QT_QPA_PLATFORMTHEME", "", 1);
    QApplication application(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    kelcore::threads::SetMainThread();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
