#include "platform/linux/avahi/avahi_local_host_name.h"

#include <optional>

#include <QSysInfo>

#include "platform/avahi/avahi_fixture.h"

namespace quietlark {
namespace {

const QString kernelsName = QSysInfo::machineHostName().section(u'.', 0, 0);

class AvahiLocalHostNameTest : public AvahiFixture {
protected:
    /// The answer to one question.
    std::optional<QString> lookUp() {
        AvahiLocalHostName localHostName(*daemon, scheduler);
        std::optional<std::optional<QString>> answer;
        const auto question = localHostName.lookUp([&](const auto& name) { answer = name; });
        EXPECT_FALSE(answer) << "before the call returned";
        EXPECT_TRUE(waitUntil([&] { return answer.has_value(); }));
        return answer.value_or(std::nullopt);
    }
};

TEST_F(AvahiLocalHostNameTest, IsTheNameThatAvahiAnnounces) {
    EXPECT_EQ(lookUp(), AvahiPeer::hostName());
}

TEST_F(AvahiLocalHostNameTest, IsTheKernelsWhereThereIsNoAvahi) {
    peer->stopDaemon();
    EXPECT_EQ(lookUp(), kernelsName);
}

TEST_F(AvahiLocalHostNameTest, IsTheKernelsWhereThereIsNoSystemBus) {
    peer->stopBus();
    EXPECT_EQ(lookUp(), kernelsName);
}

TEST_F(AvahiLocalHostNameTest, IsTheKernelsWhereAvahiDoesNotAnswer) {
    peer->freezeDaemon();
    EXPECT_EQ(lookUp(), kernelsName);
}

TEST_F(AvahiLocalHostNameTest, AWithdrawnQuestionIsNotAnswered) {
    AvahiLocalHostName localHostName(*daemon, scheduler);
    bool isAnswered = false;
    localHostName.lookUp([&](const auto&) { isAnswered = true; }).cancel();
    EXPECT_EQ(lookUp(), AvahiPeer::hostName());
    EXPECT_FALSE(isAnswered);
}

}  // namespace
}  // namespace quietlark
