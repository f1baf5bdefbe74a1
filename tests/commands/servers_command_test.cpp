#include "commands/servers_command.h"

#include <algorithm>
#include <sstream>

#include <gtest/gtest.h>

#include "commands/console.h"
#include "fakes/fake_local_host_name.h"
#include "fakes/fake_scheduler.h"
#include "fakes/fake_service_browser.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

class ServersCommandTest : public testing::Test {
protected:
    void run() {
        m_command.run({3s}, [this](ExitCode code) { m_exitCodes.push_back(code); });
        m_scheduler.runPosted();
    }
    void searchEnds() {
        m_scheduler.runPosted();
        m_localHostName.answer(std::nullopt);
        m_scheduler.advance(3s);
    }

    FakeScheduler m_scheduler;
    FakeServiceBrowser m_network{m_scheduler};
    FakeLocalHostName m_localHostName;
    DiscoveredServers m_servers{m_network, m_localHostName, m_scheduler};
    std::optional<QString> m_problem;
    std::ostringstream m_results;
    std::ostringstream m_messages;
    Console m_console{m_results, m_messages};
    ServersCommand m_command{m_servers, [this] { return m_problem; }, m_scheduler, m_console};
    std::vector<ExitCode> m_exitCodes;
};

TEST_F(ServersCommandTest, ListsWhoAnnouncesItself) {
    run();
    m_network.publish(QStringLiteral("Office"),
                      {QStringLiteral("box.local."), 8001,
                       ResolvedService::TxtRecord{{"rtf", "4.2"}, {"model", "large"}}});
    searchEnds();
    EXPECT_EQ(m_results.str(), "Office\tbox.local:8001\t4.2x\tlarge\t-\n");
    EXPECT_EQ(m_exitCodes, std::vector{ExitCode::Done});
}

TEST_F(ServersCommandTest, NobodyThereIsAnAnswer) {
    run();
    searchEnds();
    EXPECT_EQ(m_results.str(), "");
    EXPECT_EQ(m_messages.str(), "quietlark: No transcription server announces itself here.\n");
    EXPECT_EQ(m_exitCodes, std::vector{ExitCode::Done});
}

TEST_F(ServersCommandTest, WhereNothingCanBeFoundTheReasonIsGiven) {
    m_problem = QStringLiteral("Start Avahi.");
    run();
    searchEnds();
    EXPECT_EQ(m_messages.str(), "quietlark: Start Avahi.\n");
    EXPECT_EQ(m_exitCodes, std::vector{ExitCode::Failed});
}

TEST_F(ServersCommandTest, ANameCannotForgeALineOrColumn) {
    run();
    m_network.publish(QStringLiteral("A\tB\nC\x1b[0m"),
                      {QStringLiteral("h.local"), 1, std::nullopt});
    searchEnds();
    EXPECT_EQ(std::ranges::count(m_results.str(), '\n'), 1);
    EXPECT_EQ(std::ranges::count(m_results.str(), '\t'), 4);
    EXPECT_EQ(m_results.str().find('\x1b'), std::string::npos);
}

}  // namespace
}  // namespace quietlark
