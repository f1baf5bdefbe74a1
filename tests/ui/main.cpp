#include <QApplication>
#include <gtest/gtest.h>

// Draws into memory, for a screen that has room for every window at any scale: these tests need no
// display.
int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" SCREENS);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
