#include "platform/linux/session_bus/session_bus_application.h"

#include <optional>

#include <gtest/gtest.h>

#include "peers/session_bus.h"
#include "platform/linux/session_bus/session_bus_service.h"
#include "support/wait.h"

namespace quietlark {
namespace {

class SessionBusApplicationTest : public testing::Test {
protected:
    void programRuns() {
        m_service.emplace(m_bus.connect(), [this](DictationOrder order) {
            m_orders.push_back(order);
            return DictationReport{QStringLiteral("idle"), QStringLiteral("sentence")};
        });
        bool isAnswered = false;
        const Cancellable claim = m_service->claim([&](auto) { isAnswered = true; });
        ASSERT_TRUE(waitUntil([&] { return isAnswered; }));
    }
    RunningApplication::Answer order(DictationOrder order) {
        std::optional<RunningApplication::Answer> answer;
        const Cancellable question =
            m_application.order(order, [&](const auto& given) { answer = given; });
        EXPECT_TRUE(waitUntil([&] { return answer.has_value(); }));
        return answer.value_or(tl::unexpected(Unavailable{}));
    }

    SessionBus m_bus;
    std::vector<DictationOrder> m_orders;
    std::optional<SessionBusService> m_service;
    SessionBusApplication m_application{m_bus.connect()};
};

TEST_F(SessionBusApplicationTest, EveryOrderArrivesAndIsAnswered) {
    programRuns();
    const std::vector orders{DictationOrder::start, DictationOrder::stop, DictationOrder::toggle,
                             DictationOrder::status};
    for (const auto each : orders)
        EXPECT_EQ(order(each),
                  (DictationReport{QStringLiteral("idle"), QStringLiteral("sentence")}));
    EXPECT_EQ(m_orders, orders);
}

TEST_F(SessionBusApplicationTest, WithoutAProgramThatRunsItSaysHowToStartIt) {
    EXPECT_EQ(order(DictationOrder::status).error().reason,
              QStringLiteral("Quietlark is not running; start it with: quietlark"));
}

TEST_F(SessionBusApplicationTest, WithoutABusItSaysWhereToBe) {
    SessionBusApplication outside(QDBusConnection(QStringLiteral("no such connection")));
    std::optional<RunningApplication::Answer> answer;
    const Cancellable question =
        outside.order(DictationOrder::start, [&](const auto& given) { answer = given; });
    EXPECT_FALSE(answer.has_value());
    ASSERT_TRUE(waitUntil([&] { return answer.has_value(); }));
    EXPECT_EQ(answer->error().reason,
              QStringLiteral(
                  "There is no session bus to reach Quietlark on; run this within the desktop."));
}

TEST_F(SessionBusApplicationTest, ReopeningReachesTheProgramThatRuns) {
    programRuns();
    int requests = 0;
    QObject::connect(&*m_service, &SessionBusService::reopenRequested, [&] { ++requests; });
    bool isDone = false;
    const Cancellable question =
        m_application.reopen([&](const auto& done) { isDone = done.has_value(); });
    EXPECT_TRUE(waitUntil([&] { return isDone; }));
    EXPECT_EQ(requests, 1);
}

TEST_F(SessionBusApplicationTest, AQuestionThatWasWithdrawnHasNoAnswer) {
    programRuns();
    bool isAnswered = false;
    {
        const auto question =
            m_application.order(DictationOrder::stop, [&](auto) { isAnswered = true; });
    }
    (void)order(DictationOrder::status);
    EXPECT_FALSE(isAnswered);
}

}  // namespace
}  // namespace quietlark
