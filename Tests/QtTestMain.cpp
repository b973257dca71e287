#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    // What is measured must not depend on the fonts of the machine.
    if (!qEnvironmentVariableIsSet("FONTCONFIG_FILE")) {
        qputenv("FONTCONFIG_FILE", TAMO_TEST_FONTS);
    }
    // Qt starts threads, and a death test that merely forks may then hang.
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
