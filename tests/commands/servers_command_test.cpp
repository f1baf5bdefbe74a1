#include "commands/servers_command.h"

#include <algorithm>
#include <sstream>

#include <gtest/gtest.h>

#include "commands/console.h"
#include "fakes/fake_local_host_name.h"
#include "fakes/fake_processor.h"
#include "fakes/fake_scheduler.h"
#include "fakes/fake_service_browser.h"
#include "servers/hardware_profile.h"
#include "servers/server_ranker.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

class ServersCommandTest : public testing::Test {
protected:
    void run() {
        m_command.run({3s}, [this](ExitCode code) { m_exitCodes.push_back(code); });
        m_scheduler.runPosted();
    }
    void publish(const QString& name, std::optional<const char*> rtf = std::nullopt) {
        ResolvedService says{name.toLower() + QStringLiteral(".local."), 8001,
                             ResolvedService::TxtRecord{{"model", "large"}}};
        if (rtf) says.txtRecord->insert("rtf", *rtf);
        m_network.publish(name, says);
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
    FakeProcessor m_processor{"Apple M1"};
    HardwareProfile m_hardware{m_processor};
    ServerRanker m_ranker{m_hardware};
    ServersCommand m_command{m_servers, m_ranker, [this] { return m_problem; }, m_scheduler,
                             m_console};
    std::vector<ExitCode> m_exitCodes;
};

TEST_F(ServersCommandTest, ListsWhoAnnouncesItselfAndRecommendsTheFastest) {
    run();
    publish(QStringLiteral("Attic"), "4.2");
    publish(QStringLiteral("Office"), "20");
    publish(QStringLiteral("Hall"));
    searchEnds();
    EXPECT_EQ(m_results.str(),
              "Attic\tattic.local:8001\t4.2x\tlarge\t-\tSlower than this Mac\n"
              "Office\toffice.local:8001\t20.0x\tlarge\t-\tFaster than this Mac\n"
              "Hall\thall.local:8001\t-\tlarge\t-\t-\n"
              "Recommended: Office\toffice.local:8001\n");
    EXPECT_EQ(m_exitCodes, std::vector{ExitCode::Done});
}

TEST_F(ServersCommandTest, NobodyThereIsAnAnswerAndThisComputerIsRecommended) {
    run();
    searchEnds();
    EXPECT_EQ(m_results.str(), "Recommended: this computer (Apple M1)\n");
    EXPECT_EQ(m_messages.str(), "quietlark: No transcription server announces itself here.\n");
    EXPECT_EQ(m_exitCodes, std::vector{ExitCode::Done});
}

TEST_F(ServersCommandTest, AnUnknownProcessorHasNoNameToGive) {
    m_processor.brand = QStringLiteral("AMD EPYC");
    run();
    searchEnds();
    EXPECT_EQ(m_results.str(), "Recommended: this computer\n");
}

TEST_F(ServersCommandTest, WhatCannotBeComparedIsNotRecommended) {
    m_processor.brand = QStringLiteral("AMD EPYC");
    run();
    publish(QStringLiteral("Office"), "20");
    searchEnds();
    EXPECT_EQ(m_results.str(),
              "Office\toffice.local:8001\t20.0x\tlarge\t-\t-\n"
              "No recommendation: the speed of this computer or of the servers is not known.\n");
}

TEST_F(ServersCommandTest, WhereNothingCanBeFoundTheReasonIsGiven) {
    m_problem = QStringLiteral("Start Avahi.");
    run();
    searchEnds();
    EXPECT_EQ(m_messages.str(), "quietlark: Start Avahi.\n");
    EXPECT_EQ(m_exitCodes, std::vector{ExitCode::Failed});
}

TEST_F(ServersCommandTest, AHostIsPrintedAsItIsEvenWithWhatLooksLikeAPlaceholder) {
    run();
    m_network.publish(QStringLiteral("Zone"), {QStringLiteral("[fe80::1%2]"), 1, std::nullopt});
    searchEnds();
    EXPECT_TRUE(m_results.str().starts_with("Zone\t[fe80::1%2]:1\t"));
}

TEST_F(ServersCommandTest, ANameThatSpansLinesKeepsItsWordsApart) {
    run();
    m_network.publish(QStringLiteral("Big\nBox"), {QStringLiteral("h.local"), 1, std::nullopt});
    searchEnds();
    EXPECT_TRUE(m_results.str().starts_with("Big Box\t"));
}

TEST_F(ServersCommandTest, NoColumnIsEmptyWhereNothingOfATextShows) {
    run();
    m_network.publish(QStringLiteral("\u200b"),
                      {QStringLiteral("h.local"), 1,
                       ResolvedService::TxtRecord{{"model", "\u200e"}, {"rtf", "20"}}});
    searchEnds();
    EXPECT_EQ(m_results.str(),
              "h.local:1\th.local:1\t20.0x\t-\t-\tFaster than this Mac\n"
              "Recommended: h.local:1\th.local:1\n");
}

TEST_F(ServersCommandTest, ASpeedBeyondAllReasonTakesNoMoreRoom) {
    run();
    publish(QStringLiteral("Box"), "1e308");
    searchEnds();
    EXPECT_TRUE(m_results.str().starts_with("Box\tbox.local:8001\t1.0e+308x\t"));
}

TEST_F(ServersCommandTest, ANameCannotForgeALineOrColumn) {
    run();
    m_network.publish(QStringLiteral("A\tB\nC\x1b[0m"),
                      {QStringLiteral("h.local"), 1, std::nullopt});
    searchEnds();
    EXPECT_EQ(std::ranges::count(m_results.str(), '\n'), 2);
    EXPECT_EQ(std::ranges::count(m_results.str(), '\t'), 5);
    EXPECT_EQ(m_results.str().find('\x1b'), std::string::npos);
}

}  // namespace
}  // namespace quietlark
