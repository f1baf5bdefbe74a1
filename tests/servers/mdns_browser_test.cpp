#include "servers/mdns_browser.h"

#include <QStringList>
#include <gtest/gtest.h>

#include "fakes/fake_scheduler.h"
#include "fakes/fake_service_browser.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;
using Entry = MDNSBrowser::Entry;
using TxtRecord = ResolvedService::TxtRecord;

const QString office = QStringLiteral("Office");
const QString kitchen = QStringLiteral("Kitchen");

ResolvedService at(const char* host, int port, std::optional<TxtRecord> txtRecord = {}) {
    return {QString::fromUtf8(host), port, std::move(txtRecord)};
}

class MDNSBrowserTest : public testing::Test {
protected:
    MDNSBrowserTest() {
        browser.onChange = [this](const std::vector<Entry>& entries) {
            reports.push_back(entries);
        };
    }

    void start() {
        browser.start();
        scheduler.runPosted();
    }

    /// A server appears and is asked.
    void publish(const QString& name, const ResolvedService& says) {
        network.publish(name, says);
        scheduler.runPosted();
    }

    [[nodiscard]] const std::vector<Entry>& entries() const { return reports.back(); }

    [[nodiscard]] QStringList ids() const {
        QStringList all;
        for (const Entry& entry : entries())
            all << entry.id();
        return all;
    }

    /// What is made of one TXT record.
    Entry entryWith(std::optional<TxtRecord> txtRecord) {
        start();
        publish(office, at("box.local", 8001, std::move(txtRecord)));
        return entries().front();
    }

    /// What is made of one TXT value.
    std::optional<double> rtfOf(const QByteArray& value) {
        return entryWith(TxtRecord{{"rtf", value}}).rtf;
    }
    std::optional<QString> modelOf(const QByteArray& value) {
        return entryWith(TxtRecord{{"model", value}}).model;
    }

    FakeScheduler scheduler;
    FakeServiceBrowser network{scheduler};
    MDNSBrowser browser{network};
    std::vector<std::vector<Entry>> reports;
};

TEST_F(MDNSBrowserTest, SearchesForTranscriptionServersOnTheLocalNetwork) {
    start();
    EXPECT_EQ(network.lastQuery().type, QStringLiteral("_whisper._tcp."));
    EXPECT_EQ(network.lastQuery().domain, QStringLiteral("local."));
}

TEST_F(MDNSBrowserTest, SearchesForNothingBeforeItIsStarted) {
    EXPECT_EQ(network.browseCount(), 0U);
    EXPECT_TRUE(reports.empty());
}

TEST_F(MDNSBrowserTest, TheIdentityJoinsNameHostAndPort) {
    start();
    publish(office, at("box.local", 8001));
    EXPECT_EQ(entries().front().id(), QStringLiteral("Office|box.local:8001"));
}

TEST_F(MDNSBrowserTest, OneFinalDotOfTheHostNameIsDropped) {
    start();
    publish(office, at("mini.local.", 8001));
    publish(kitchen, at("odd.local..", 8001));
    EXPECT_EQ(entries().at(0).host, QStringLiteral("mini.local"));
    EXPECT_EQ(entries().at(1).host, QStringLiteral("odd.local."));
}

TEST_F(MDNSBrowserTest, AServiceWithoutHostNameIsCalledByItsInstanceName) {
    start();
    publish(QStringLiteral("Office."), {std::nullopt, 8001, {}});
    EXPECT_EQ(entries().front().host, QStringLiteral("Office."));
}

TEST_F(MDNSBrowserTest, AServiceWithoutPortNeverAppears) {
    start();
    publish(office, at("box.local", 0));
    EXPECT_EQ(reports.size(), 1U);
}

TEST_F(MDNSBrowserTest, AServiceWithoutPortMayGetOneLater) {
    start();
    publish(office, at("box.local", 0));
    network.reportResolved(office, at("box.local", 8001));
    EXPECT_EQ(ids(), QStringList{QStringLiteral("Office|box.local:8001")});
}

TEST_F(MDNSBrowserTest, ReadsTheThreeKeysOfTheTxtRecord) {
    const Entry entry = entryWith(
        TxtRecord{{"rtf", "12.5"}, {"model", "large"}, {"cpu", "Apple M2 Pro"}, {"other", "x"}});
    EXPECT_EQ(entry.rtf, 12.5);
    EXPECT_EQ(entry.model, QStringLiteral("large"));
    EXPECT_EQ(entry.cpu, QStringLiteral("Apple M2 Pro"));
}

TEST_F(MDNSBrowserTest, ANumberMayHaveBlanksAroundIt) {
    EXPECT_EQ(rtfOf(" 0.42 "), 0.42);
    EXPECT_EQ(rtfOf("\t0.42\t"), 0.42);
}

TEST_F(MDNSBrowserTest, AValueThatIsNoNumberIsAbsent) {
    for (const char* value : {"fast", "0.35x", "x0.35", "0.3 5", "1,5", "0x10", "+-1", "++1", "+",
                              "0.35\n", "1e", "--1", "nan", "inf", "-infinity", "1e999"})
        EXPECT_EQ(rtfOf(value), std::nullopt) << value;
}

TEST_F(MDNSBrowserTest, ANumberMayBeWrittenInAnyDecimalWay) {
    EXPECT_EQ(rtfOf("0.35"), 0.35);
    EXPECT_EQ(rtfOf("+2"), 2.0);
    EXPECT_EQ(rtfOf("-1.5"), -1.5);
    EXPECT_EQ(rtfOf("1e2"), 100.0);
}

TEST_F(MDNSBrowserTest, AnEmptyOrMissingTxtRecordLeavesAllThreeAbsent) {
    for (const auto& record : {std::optional<TxtRecord>(), std::optional(TxtRecord())}) {
        const Entry entry = entryWith(record);
        EXPECT_EQ(entry.rtf, std::nullopt);
        EXPECT_EQ(entry.model, std::nullopt);
        EXPECT_EQ(entry.cpu, std::nullopt);
    }
}

TEST_F(MDNSBrowserTest, KeysAreMatchedExactly) {
    const Entry entry = entryWith(TxtRecord{{"RTF", "1"}, {"Model", "a"}, {"cpu ", "b"}});
    EXPECT_EQ(entry.rtf, std::nullopt);
    EXPECT_EQ(entry.model, std::nullopt);
    EXPECT_EQ(entry.cpu, std::nullopt);
}

TEST_F(MDNSBrowserTest, AValueThatIsNotUtf8IsAbsent) {
    EXPECT_EQ(modelOf("\xff"), std::nullopt);
    EXPECT_EQ(modelOf("large\xc3"), std::nullopt);
    EXPECT_EQ(rtfOf("1\xff"), std::nullopt);
    EXPECT_EQ(modelOf("gro\xc3\x9f"), QString::fromUtf8("groß"));
}

TEST_F(MDNSBrowserTest, OnlySpacesAndTabsAreTrimmedFromAValue) {
    EXPECT_EQ(modelOf(" \t large v3 \t"), QStringLiteral("large v3"));
    EXPECT_EQ(modelOf("\nlarge\n"), QStringLiteral("\nlarge\n"));
    EXPECT_EQ(modelOf(" \t "), std::nullopt);
    EXPECT_EQ(modelOf(""), std::nullopt);
}

TEST_F(MDNSBrowserTest, AServerThatAnswersAgainMovesToTheEnd) {
    start();
    publish(office, at("box.local", 8001));
    publish(kitchen, at("pi.local", 8001));
    publish(office, at("box.local", 8001, TxtRecord{{"rtf", "3"}}));
    EXPECT_EQ(ids(), (QStringList{QStringLiteral("Kitchen|pi.local:8001"),
                                  QStringLiteral("Office|box.local:8001")}));
    EXPECT_EQ(entries().back().rtf, 3.0);
}

TEST_F(MDNSBrowserTest, TheSameNameOnOtherHostsOrPortsStandsSideBySide) {
    start();
    publish(office, at("box.local", 8001));
    network.reportResolved(office, at("box.local", 8002));
    network.reportResolved(office, at("pi.local", 8001));
    EXPECT_EQ(entries().size(), 3U);
}

TEST_F(MDNSBrowserTest, AServerThatKeepsChangingPushesOutItsOwnOldestAnswersOnly) {
    start();
    publish(kitchen, at("pi.local", 8001));
    publish(office, at("box.local", 1));
    for (int port = 2; port <= 100; ++port)
        network.reportResolved(office, at("box.local", port));
    EXPECT_EQ(entries().size(), 1U + MDNSBrowser::maxEntriesPerName);
    EXPECT_EQ(entries().front().name, kitchen);
    EXPECT_EQ(entries()[1].port, 101 - MDNSBrowser::maxEntriesPerName);
    EXPECT_EQ(entries().back().port, 100);
}

TEST_F(MDNSBrowserTest, ARemovalTakesAllEntriesOfTheName) {
    start();
    publish(office, at("box.local", 8001));
    network.reportResolved(office, at("box.local", 8002));
    publish(kitchen, at("pi.local", 8001));
    network.withdraw(office);
    EXPECT_EQ(ids(), QStringList{QStringLiteral("Kitchen|pi.local:8001")});
}

TEST_F(MDNSBrowserTest, ARemovalTakesOnlyTheExactName) {
    start();
    publish(office, at("box.local", 8001));
    network.reportRemoved(QStringLiteral("OFFICE"));
    EXPECT_EQ(entries().size(), 1U);
}

TEST_F(MDNSBrowserTest, ARemovalIsReportedEvenWhenNothingWasRemoved) {
    start();
    publish(office, at("box.local", 8001));
    const auto before = reports.size();
    network.reportRemoved(kitchen);
    EXPECT_EQ(reports.size(), before + 1);
    EXPECT_EQ(entries().size(), 1U);
}

TEST_F(MDNSBrowserTest, AServiceThatDoesNotAnswerIsGivenUpAfterFiveSecondsUntilTheNextSearch) {
    start();
    network.publishSilent(office);
    scheduler.advance(4999ms);
    EXPECT_EQ(network.resolutionCount(), 1U);
    scheduler.advance(1ms);
    EXPECT_EQ(network.resolutionCount(), 0U);
    scheduler.advance(1h);
    EXPECT_EQ(network.resolutionCount(), 0U);
    EXPECT_EQ(reports.size(), 1U);
    start();
    EXPECT_EQ(network.resolutionCount(), 1U);
}

TEST_F(MDNSBrowserTest, AServerThatMovedIsFoundAtItsNewAddressOnly) {
    start();
    publish(office, at("box.local", 8001));
    publish(office, at("box.local", 8002));
    EXPECT_EQ(ids(), QStringList{QStringLiteral("Office|box.local:8002")});
}

TEST_F(MDNSBrowserTest, StartReportsAnEmptyListBeforeAnythingIsFound) {
    browser.start();
    EXPECT_EQ(reports, std::vector<std::vector<Entry>>{{}});
}

TEST_F(MDNSBrowserTest, StopKeepsTheListAndReportsNothing) {
    start();
    publish(office, at("box.local", 8001));
    const auto before = reports.size();
    browser.stop();
    publish(kitchen, at("pi.local", 8001));
    EXPECT_EQ(reports.size(), before);
    EXPECT_EQ(network.browseCount(), 0U);
    EXPECT_EQ(network.resolutionCount(), 0U);
}

TEST_F(MDNSBrowserTest, StartAfterStopClearsTheListAndReportsItEmpty) {
    start();
    publish(office, at("box.local", 8001));
    browser.stop();
    browser.start();
    EXPECT_TRUE(entries().empty());
}

TEST_F(MDNSBrowserTest, StartWhileBrowsingSearchesAfresh) {
    start();
    publish(office, at("box.local", 8001));
    browser.start();
    EXPECT_TRUE(entries().empty());
    scheduler.runPosted();
    EXPECT_EQ(entries().size(), 1U);
    EXPECT_EQ(network.browseCount(), 1U);
}

TEST_F(MDNSBrowserTest, WithoutAnObserverNothingIsReported) {
    browser.onChange = nullptr;
    start();
    publish(office, at("box.local", 8001));
    network.withdraw(office);
    EXPECT_TRUE(reports.empty());
}

TEST_F(MDNSBrowserTest, TheObserverMayStopTheBrowser) {
    browser.onChange = [this](const std::vector<Entry>& entries) {
        reports.push_back(entries);
        if (!entries.empty()) browser.stop();
    };
    start();
    publish(office, at("box.local", 8001));
    EXPECT_EQ(entries().size(), 1U);
    EXPECT_EQ(network.browseCount(), 0U);
}

}  // namespace
}  // namespace quietlark
