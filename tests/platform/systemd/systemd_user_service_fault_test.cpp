#include <map>
#include <optional>

#include <QDBusObjectPath>
#include <QDBusVirtualObject>

#include "platform/systemd/systemd_fixture.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

/// A service manager that answers everything, or all but what it does, with the same error, or not
/// at all.
class OddManager final : public QDBusVirtualObject {
public:
    std::optional<QString> errorName;
    std::map<QString, QVariant> answers;  ///< by method
    QStringList calls;                    ///< of those methods

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        message.setDelayedReply(true);
        const auto answer = answers.find(message.member());
        if (answer != answers.end()) {
            calls << message.member();
            bus.send(message.createReply(answer->second));
        } else if (errorName) {
            bus.send(message.createErrorReply(*errorName, QStringLiteral("Odd.")));
        }
        return true;
    }
};

class SystemdUserServiceFaultTest : public ::testing::Test {
protected:
    ~SystemdUserServiceFaultTest() override {
        service.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("manager"));
        QDBusConnection::disconnectFromBus(QStringLiteral("program"));
    }

    void startManager() {
        auto bus = QDBusConnection::connectToBus(address, QStringLiteral("manager"));
        ASSERT_TRUE(
            bus.registerVirtualObject(QStringLiteral("/org/freedesktop/systemd1"), &manager));
        ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.systemd1")));
    }
    void follow(std::chrono::milliseconds patience = 20s) {
        service.emplace(testUnit, QDBusConnection::connectToBus(address, QStringLiteral("program")),
                        patience);
        ASSERT_TRUE(waitUntil([this] { return service->isKnown(); }));
    }
    QString complaintOfRegistering() {
        ServiceAnswer answer;
        const auto pending = service->registerService(answer.remember());
        return complaintIn(answer);
    }
    QString complaintOfTakingBack() {
        ServiceAnswer answer;
        const auto pending = service->unregisterService(answer.remember());
        return complaintIn(answer);
    }
    static QString complaintIn(ServiceAnswer& answer) {
        const auto result = answer.await();
        return result ? QString() : result.error().localizedDescription;
    }
    void managerDisables() {
        manager.answers[QStringLiteral("DisableUnitFiles")] = QVariantList();
        manager.answers[QStringLiteral("Reload")] = QVariant(true);
    }

    ChildProcess daemon{
        QStringLiteral("dbus-daemon"),
        {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address"),
         QStringLiteral("--address=unix:tmpdir=/tmp")}};
    QString address = QString::fromUtf8(daemon.readLine());
    OddManager manager;
    std::optional<SystemdUserService> service;
};

TEST_F(SystemdUserServiceFaultTest, WithoutAManagerTheServiceIsNotFoundAndRegisteringSaysWhy) {
    follow();
    EXPECT_EQ(service->status(), ServiceStatus::notFound);
    EXPECT_TRUE(complaintOfRegistering().contains(QStringLiteral("no service manager")));
}

TEST_F(SystemdUserServiceFaultTest, WithoutABusTheServiceIsNotFoundAndRegisteringSaysWhy) {
    address = QStringLiteral("unix:path=/nonexistent");
    follow();
    EXPECT_EQ(service->status(), ServiceStatus::notFound);
    EXPECT_TRUE(complaintOfRegistering().contains(QStringLiteral("no service manager")));
}

TEST_F(SystemdUserServiceFaultTest, AManagerThatHangsIsGivenUpOn) {
    startManager();
    follow(200ms);
    EXPECT_EQ(service->status(), ServiceStatus::notFound);
    EXPECT_TRUE(complaintOfRegistering().contains(QStringLiteral("does not answer")));
}

TEST_F(SystemdUserServiceFaultTest, AnOddErrorIsPassedOn) {
    manager.errorName = QStringLiteral("com.example.Strange");
    startManager();
    follow();
    EXPECT_EQ(service->status(), ServiceStatus::notFound);
    EXPECT_TRUE(complaintOfRegistering().endsWith(QStringLiteral("Odd.")));
}

TEST_F(SystemdUserServiceFaultTest, FailuresAreForgottenBeforeTheServiceIsStarted) {
    manager.errorName = QStringLiteral("com.example.Strange");
    const QStringList answered{QStringLiteral("EnableUnitFiles"), QStringLiteral("Reload"),
                               QStringLiteral("ResetFailedUnit")};
    for (const QString& method : answered)
        manager.answers[method] = QVariant(true);
    startManager();
    follow();
    EXPECT_TRUE(complaintOfRegistering().endsWith(QStringLiteral("Odd.")));
    EXPECT_EQ(manager.calls, answered);
}

TEST_F(SystemdUserServiceFaultTest, AServiceIsStartedEvenIfItsFailuresCannotBeForgotten) {
    manager.errorName = QStringLiteral("com.example.Strange");
    for (const char* method : {"EnableUnitFiles", "Reload", "StartUnit"})
        manager.answers[QLatin1String(method)] = QVariant(true);
    startManager();
    follow(200ms);
    EXPECT_FALSE(complaintOfRegistering().isEmpty());
    EXPECT_TRUE(manager.calls.contains(QStringLiteral("StartUnit")));
}

TEST_F(SystemdUserServiceFaultTest, WhatCannotBeStoppedIsDisabledAndTheReasonTold) {
    manager.errorName = QStringLiteral("com.example.Strange");
    managerDisables();
    startManager();
    follow();
    EXPECT_TRUE(complaintOfTakingBack().endsWith(QStringLiteral("Odd.")));
    EXPECT_EQ(manager.calls,
              (QStringList{QStringLiteral("DisableUnitFiles"), QStringLiteral("Reload")}));
}

TEST_F(SystemdUserServiceFaultTest, WhatTakesTooLongToStopIsDisabled) {
    manager.answers[QStringLiteral("GetUnitFileState")] = QStringLiteral("enabled");
    manager.answers[QStringLiteral("StopUnit")] =
        QVariant::fromValue(QDBusObjectPath(QStringLiteral("/org/freedesktop/systemd1/job/1")));
    managerDisables();
    startManager();
    follow(2s);
    EXPECT_TRUE(complaintOfTakingBack().contains(QStringLiteral("takes too long")));
    EXPECT_TRUE(manager.calls.contains(QStringLiteral("DisableUnitFiles")));
}

TEST_F(SystemdUserServiceFaultTest, WhatCannotBeDisabledIsReported) {
    manager.errorName = QStringLiteral("com.example.Strange");
    startManager();
    follow();
    EXPECT_TRUE(complaintOfTakingBack().endsWith(QStringLiteral("Odd.")));
}

}  // namespace
}  // namespace quietlark
