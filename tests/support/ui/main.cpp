/// Runs test cases that need a QGuiApplication, with the font that the tests' pictures are drawn in.

#include <QtGui/QFont>
#include <QtGui/QGuiApplication>

#include <gmock/gmock.h>

int main(int count, char** arguments) {
    testing::InitGoogleMock(&count, arguments);
    QGuiApplication application(count, arguments);
    QGuiApplication::setFont(QFont(QStringLiteral("Inter")));
    QGuiApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
