// SPDX-License-Identifier: Apache-2.0
/// Runs tests that need a QGuiApplication, with the font of the reference pictures.

#include <QtGui/QFont>
#include <QtGui/QGuiApplication>

#include <gmock/gmock.h>

#ifdef __SANITIZE_ADDRESS__
/// Keeps libraries loaded: memory held by the variables of an unloaded one would be reported as leaked,
/// without symbols.
extern "C" int dlclose(void* /*library*/) {
    return 0;
}
#endif

#ifdef __SANITIZE_THREAD__
/// The default where no options are given, as when the build lists the tests: Qt is not built with the
/// sanitizer, which therefore does not see how Qt's threads synchronise.
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
