#include "platform/linux/session_bus/desktop_notification.h"

#include <gtest/gtest.h>

#include "peers/session_bus.h"
#include "peers/x_server.h"
#include "support/wait.h"

namespace quietlark {
namespace {

class DesktopNotificationTest : public testing::Test {
protected:
    void notify() { notifyOn(m_connection); }
    void notifyOn(const QDBusConnection& bus) {
        m_notification =
            notifyUser(bus, QStringLiteral("Quietlark"), QStringLiteral("1 < 2 & so on"),
                       [this] { m_isNobodyThere = true; });
    }

    SessionBus m_bus;
    QDBusConnection m_connection = m_bus.connect();
    bool m_isNobodyThere = false;
    Cancellable m_notification;
};

/// With the notification daemon dunst, which tells what it shows.
class ShownNotificationTest : public DesktopNotificationTest {
protected:
    QByteArray ask(const QString& question) {
        ChildProcess control(QStringLiteral("dunstctl"), question.split(u' '), m_environment);
        return control.readAll();
    }

    XServer m_screen;
    const QProcessEnvironment m_environment = [this] {
        auto environment = m_screen.environment();
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_bus.address());
        return environment;
    }();
    ChildProcess m_daemon{QStringLiteral("dunst"), {}, m_environment};
};

TEST_F(ShownNotificationTest, IsShownByTheDesktopAsItStands) {
    ASSERT_TRUE(waitUntil([this] { return ask(QStringLiteral("count displayed")) == "0\n"; }));
    notify();
    ASSERT_TRUE(waitUntil([this] { return ask(QStringLiteral("count displayed")) == "1\n"; }));
    ask(QStringLiteral("close-all"));
    QByteArray shown;
    EXPECT_TRUE(waitUntil([&] {
        shown = ask(QStringLiteral("history"));
        return shown.contains("1 < 2 & so on") || shown.contains("1 &lt; 2 &amp; so on");
    })) << shown.toStdString();
    EXPECT_FALSE(m_isNobodyThere);
}

TEST_F(DesktopNotificationTest, WhereNobodyShowsAnyItSaysSo) {
    notify();
    EXPECT_TRUE(waitUntil([this] { return m_isNobodyThere; }));
}

TEST_F(DesktopNotificationTest, WithoutABusItSaysSo) {
    notifyOn(QDBusConnection(QStringLiteral("none")));
    EXPECT_TRUE(waitUntil([this] { return m_isNobodyThere; }));
}

}  // namespace
}  // namespace quietlark
