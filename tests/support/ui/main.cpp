// SPDX-License-Identifier: Apache-2.0
/// Runs test cases that need a QGuiApplication, with the font that the tests' pictures are drawn in.

#include <QtGui/QFont>
#include <QtGui/QGuiApplication>

#include <gmock/gmock.h>

#ifdef __SANITIZE_ADDRESS__
/// Keeps every library: what one that has been unloaded had in its variables would count as leaked, by
/// nobody that could be named.
extern "C" int dlclose(void* /*library*/) {
    return 0;
}
#endif

#ifdef __SANITIZE_THREAD__
/// For whoever gives no options, as the build when it lists the tests: Qt is not built with the sanitizer,
/// which therefore does not see how its threads wait for each other.
extern "C" const char* __tsan_default_options() {
    return "ignore_noninstrumented_modules=1";
}
#endif

int main(int count, char** arguments) {
    testing::InitGoogleMock(&count, arguments);
    QGuiApplication application(count, arguments);
    QGuiApplication::setFont(QFont(QStringLiteral("Inter")));
    QGuiApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
