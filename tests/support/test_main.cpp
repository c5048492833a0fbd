// Test entry point: every test program runs inside a QApplication on the offscreen
// platform, as the module runs inside the terminal's QApplication.
#include <QApplication>
#include <gtest/gtest.h>

// Allocations the Qt platform and font libraries keep until exit. Built in, so that listing
// the tests (which runs without ctest's environment) is held to the same rules as running them.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libQt5\nleak:libqoffscreen\nleak:libfontconfig\nleak:libfreetype\n"
           "leak:libdbus\nleak:libglib\n";
}

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", qgetenv("QT_QPA_PLATFORM").isEmpty() ? QByteArray("offscreen")
                                                                    : qgetenv("QT_QPA_PLATFORM"));
    ::testing::InitGoogleTest(&argc, argv);
    QApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
