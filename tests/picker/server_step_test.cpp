#include "picker/server_step.h"

#include <QSignalSpy>

#include "picker/network_text.h"
#include "picker/picker_fixture.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

class ServerStepTest : public PickerFixture {
protected:
    ServerStep& step() {
        if (!m_step) m_step = std::make_unique<ServerStep>(model(), state(), ranker, scheduler);
        return *m_step;
    }
    void dropStep() { m_step.reset(); }

    QStringList names() {
        QStringList all;
        for (const ServerRow& row : step().rows())
            all << row.name;
        return all;
    }
    QStringList details() {
        QStringList all;
        for (const ServerRow& row : step().rows())
            all << row.detail;
        return all;
    }

private:
    std::unique_ptr<ServerStep> m_step;
};

TEST_F(ServerStepTest, WithoutServersTheNetworkCardLooksUntilTheInitialScanIsDone) {
    step().appear();
    scheduler.advance(ServerStep::initialScan - 1ms);
    EXPECT_EQ(step().networkCardCopy(), text("Looking…"));
    const QSignalSpy changed(&step(), &ServerStep::changed);
    scheduler.advance(1ms);
    EXPECT_EQ(step().networkCardCopy(), text("None found. Enter an address manually."));
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(ServerStepTest, TheScanIsInitialAgainWhenTheStepReappears) {
    step().appear();
    scheduler.advance(ServerStep::initialScan);
    step().disappear();
    step().appear();
    EXPECT_EQ(step().networkCardCopy(), text("Looking…"));
}

TEST_F(ServerStepTest, TheNetworkIsSearchedWhileTheStepIsShown) {
    step().appear();
    step().appear();
    EXPECT_EQ(browser.browseCount(), 1U);
    step().disappear();
    step().disappear();
    EXPECT_EQ(browser.browseCount(), 0U);
}

TEST_F(ServerStepTest, TheSearchOfAnotherScreenGoesOn) {
    state().discoveredServers().start();
    step().appear();
    step().disappear();
    step().disappear();
    EXPECT_EQ(browser.browseCount(), 1U);
}

TEST_F(ServerStepTest, TheSearchEndsWithTheStep) {
    step().appear();
    dropStep();
    EXPECT_EQ(browser.browseCount(), 0U);
    scheduler.advance(ServerStep::initialScan);
}

TEST_F(ServerStepTest, TheModelSelectsItsCardWhenTheStepAppears) {
    saved(manualRemote());
    step().appear();
    EXPECT_EQ(model().cardSelection(), Card::network);
}

TEST_F(ServerStepTest, TheCardsCompareThisComputerWithTheNetwork) {
    installModel();
    publish("Slow", "5.0");
    EXPECT_EQ(step().localCardCopy(), text("Faster than anything on your network."));
    EXPECT_EQ(step().networkCardCopy(), text("1 server, slower than this Mac."));
    publish("Fast", "20.0");
    EXPECT_EQ(step().localCardCopy(), text("Slower than a server on your network."));
    EXPECT_EQ(step().networkCardCopy(), text("2 servers found."));
}

TEST_F(ServerStepTest, WithTheModelDownloadedTheLocalCardEndsInAPlainFullStop) {
    EXPECT_EQ(step().localCardCopy(), text("Transcribe on this Mac. 1.6 GB model download."));
    installModel();
    EXPECT_EQ(step().localCardCopy(), text("Transcribe on this Mac."));
}

TEST_F(ServerStepTest, ADownloadedModelIsAnnounced) {
    step();
    const QSignalSpy changed(&step(), &ServerStep::changed);
    state().modelDownloader().start();
    scheduler.runPosted();
    fetcher.succeed();
    scheduler.runPosted();
    EXPECT_EQ(changed.count(), 2);
}

TEST_F(ServerStepTest, ARowHasNameAddressAndHint) {
    publish("Fast", "12.5");
    publish("Equal", "10.0");
    publish("Slow", "8.0");
    publish("Unrated");
    const auto rows = step().rows();
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_EQ(rows[0], (ServerRow{idOf("Fast"), text("Fast"), text("fast.local:8001"),
                                  text("Faster than this Mac")}));
    EXPECT_EQ(rows[1].hint, QString());
    EXPECT_EQ(rows[2].hint, text("Slower than this Mac"));
    EXPECT_EQ(rows[3].hint, QString());
}

TEST_F(ServerStepTest, WhatTheNetworkSendsIsShownAsOneBoundedLine) {
    const QString name = text("<b>Evil</b>\n\u202e") + QString(500, u'y');
    publish(name.toUtf8().constData());
    const auto rows = step().rows();
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_TRUE(rows[0].name.startsWith(text("<b>Evil</b> yyy")));
    EXPECT_EQ(rows[0].name.size(), maxShownLength);
    EXPECT_TRUE(rows[0].address.endsWith(text("…:8001")));
    EXPECT_TRUE(rows[0].id.startsWith(name));
}

TEST_F(ServerStepTest, ServersOfOneNameAreToldApartByTheirAddresses) {
    publish("Box");
    publish("Attic");
    EXPECT_EQ(details(), (QStringList{QString(), QString()}));
    publishAlsoAt("Box", "other.local");
    publish("Att\u200bic");
    EXPECT_EQ(names(), (QStringList{text("Box"), text("Attic"), text("Box"), text("Attic")}));
    EXPECT_EQ(details(), (QStringList{text("box.local:8001"), text("attic.local:8001"),
                                      text("other.local:8001"), text("attic.local:8001")}));
    withdraw("Box");
    withdraw("Att\u200bic");
    EXPECT_EQ(details(), QStringList{QString()});
}

TEST_F(ServerStepTest, AServerWithoutANameThatShowsIsCalledByItsAddress) {
    publish("\u200b");
    const auto rows = step().rows();
    EXPECT_EQ(rows[0].name, text(".local:8001"));
    EXPECT_EQ(rows[0].detail, QString());
}

TEST_F(ServerStepTest, EveryServerOfACrowdIsInTheList) {
    for (int i = 0; i < 150; ++i)
        publish(QByteArray("Box " + QByteArray::number(i)).constData());
    EXPECT_EQ(step().rows().size(), 150U);
    EXPECT_EQ(step().networkCardCopy(), text("150 servers found."));
}

TEST_F(ServerStepTest, ServersComeAndGo) {
    const QSignalSpy changed(&step(), &ServerStep::changed);
    publish("A");
    publish("B");
    withdraw("A");
    EXPECT_EQ(names(), QStringList{text("B")});
    EXPECT_GE(changed.count(), 3);
}

}  // namespace
}  // namespace quietlark
