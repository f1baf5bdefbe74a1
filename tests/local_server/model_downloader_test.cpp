#include "local_server/model_downloader.h"

#include <optional>
#include <vector>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "fakes/fake_model_fetcher.h"
#include "fakes/fake_scheduler.h"
#include "notifications/notification_center.h"

namespace quietlark {

namespace {

using Case = ModelDownloader::State::Case;

class ModelDownloaderTest : public testing::Test {
protected:
    void create() {
        m_downloader.emplace(m_files, m_fetcher, m_notifications, m_scheduler);
        QObject::connect(&*m_downloader, &ModelDownloader::stateChanged,
                         [this](const auto& state) { m_states.push_back(state.kind); });
        QObject::connect(&m_notifications, &NotificationCenter::posted,
                         [this](const QString& name) { m_posted.push_back(name); });
    }
    void start() {
        if (!m_downloader) create();
        m_downloader->start();
        m_scheduler.runPosted();
    }
    void write(const QString& path) const {
        QDir().mkpath(m_files.directory());
        EXPECT_TRUE(QFile(path).open(QIODevice::WriteOnly));
    }
    [[nodiscard]] Case kind() const { return m_downloader->state().kind; }

    QTemporaryDir m_home;
    ModelFiles m_files{m_home.filePath(QStringLiteral("models"))};
    FakeModelFetcher m_fetcher;
    FakeScheduler m_scheduler;
    NotificationCenter m_notifications;
    std::optional<ModelDownloader> m_downloader;
    std::vector<Case> m_states;
    std::vector<QString> m_posted;
};

}  // namespace

TEST_F(ModelDownloaderTest, IsIdleWithoutAModelAndReadyWithOne) {
    create();
    EXPECT_EQ(kind(), Case::idle);
    write(m_files.active());
    create();
    EXPECT_EQ(kind(), Case::ready);
}

TEST_F(ModelDownloaderTest, NothingIsKnownBeforeTheFirstReport) {
    start();
    EXPECT_EQ(m_downloader->progress(), std::nullopt);
    EXPECT_EQ(m_downloader->bytesWritten(), 0);
    EXPECT_EQ(m_downloader->totalBytes(), 0);
}

TEST_F(ModelDownloaderTest, TheStateChangesWhenTheEventLoopGetsToIt) {
    create();
    m_downloader->start();
    EXPECT_EQ(kind(), Case::idle);
    m_scheduler.runPosted();
    EXPECT_EQ(kind(), Case::downloading);
}

TEST_F(ModelDownloaderTest, StartingTwiceWhileDownloadingStartsOneTask) {
    create();
    m_downloader->start();
    m_downloader->start();
    start();
    EXPECT_EQ(m_fetcher.fetchCount(), 1);
}

TEST_F(ModelDownloaderTest, AModelThatIsThereIsNotFetchedAgain) {
    write(m_files.active());
    start();
    EXPECT_EQ(m_fetcher.fetchCount(), 0);
    EXPECT_EQ(kind(), Case::ready);
}

TEST_F(ModelDownloaderTest, ProgressIsTheShareThatHasArrived) {
    start();
    m_fetcher.report(25, 100);
    EXPECT_EQ(m_downloader->progress(), 0.25);
    EXPECT_EQ(m_downloader->bytesWritten(), 25);
    EXPECT_EQ(m_downloader->totalBytes(), 100);
}

TEST_F(ModelDownloaderTest, AnUnknownSizeLeavesTheTotalAtZeroAndProgressAbsent) {
    start();
    m_fetcher.report(25, -1);
    EXPECT_EQ(m_downloader->bytesWritten(), 25);
    EXPECT_EQ(m_downloader->totalBytes(), 0);
    EXPECT_EQ(m_downloader->progress(), std::nullopt);
}

TEST_F(ModelDownloaderTest, AReportOfFewerBytesThanAnEarlierOneChangesNothing) {
    start();
    m_fetcher.report(50, 100);
    QObject::connect(&*m_downloader, &ModelDownloader::progressChanged, [] { FAIL(); });
    m_fetcher.report(25, 100);
    EXPECT_EQ(m_downloader->bytesWritten(), 50);
    EXPECT_EQ(m_downloader->progress(), 0.5);
}

TEST_F(ModelDownloaderTest, ProgressDoesNotGoBackWhenTheTotalGrows) {
    start();
    m_fetcher.report(50, 100);
    m_fetcher.report(50, 200);
    EXPECT_EQ(m_downloader->totalBytes(), 200);
    EXPECT_EQ(m_downloader->progress(), 0.5);
}

TEST_F(ModelDownloaderTest, TheEndIsReadyWithTheNewsOfTheModel) {
    start();
    m_fetcher.succeed();
    EXPECT_EQ(m_downloader->progress(), 1.0);
    EXPECT_EQ(m_states, (std::vector{Case::downloading, Case::ready}));
    EXPECT_EQ(m_posted, std::vector{QStringLiteral("net.quietlark.modelReady")});
}

TEST_F(ModelDownloaderTest, TheNewsComesOnceTheStateIsReady) {
    create();
    std::optional<Case> seen;
    QObject::connect(&m_notifications, &NotificationCenter::posted, [&] { seen = kind(); });
    start();
    m_fetcher.succeed();
    EXPECT_EQ(seen, Case::ready);
}

TEST_F(ModelDownloaderTest, AFailureIsShownAndCanBeTriedAgain) {
    start();
    m_fetcher.report(50, 100);
    m_fetcher.fail(QStringLiteral("gone"));
    EXPECT_EQ(m_downloader->state(),
              (ModelDownloader::State{Case::failed, QStringLiteral("gone")}));
    EXPECT_TRUE(m_posted.empty());
    start();
    EXPECT_EQ(kind(), Case::downloading);
    EXPECT_EQ(m_downloader->progress(), std::nullopt);
    EXPECT_EQ(m_downloader->bytesWritten(), 0);
}

TEST_F(ModelDownloaderTest, ADirectoryThatCannotBeMadeIsAFailureOfTheNextTurn) {
    const QString file = m_home.filePath(QStringLiteral("file"));
    EXPECT_TRUE(QFile(file).open(QIODevice::WriteOnly));
    m_files = ModelFiles(file + QStringLiteral("/models"));
    create();
    m_downloader->start();
    EXPECT_EQ(kind(), Case::idle);
    m_scheduler.runPosted();
    EXPECT_EQ(m_downloader->state().message,
              QStringLiteral("Couldn't create models directory: Not a directory"));
    EXPECT_EQ(m_fetcher.fetchCount(), 0);
}

TEST_F(ModelDownloaderTest, CancellingLeavesTheStateAndTheNextStartContinues) {
    start();
    m_downloader->cancel();
    EXPECT_FALSE(m_fetcher.isFetching());
    EXPECT_EQ(kind(), Case::downloading);
    start();
    EXPECT_EQ(m_fetcher.fetchCount(), 2);
}

TEST_F(ModelDownloaderTest, StoppingTellsWhenTheFilesAreNoLongerTouched) {
    start();
    int times = 0;
    m_downloader->stop([&times] { ++times; });
    EXPECT_FALSE(m_fetcher.isFetching());
    EXPECT_EQ(times, 0);
    m_fetcher.becomeStill();
    EXPECT_EQ(times, 1);
}

TEST_F(ModelDownloaderTest, NobodyIsToldOnceTheDownloaderIsGone) {
    start();
    m_downloader->stop([] { FAIL(); });
    m_downloader.reset();
    m_fetcher.becomeStill();
}

TEST_F(ModelDownloaderTest, ItsEndIsACancellation) {
    create();
    m_downloader->start();
    m_downloader.reset();
    EXPECT_FALSE(m_fetcher.isFetching());
    m_scheduler.runPosted();
}

TEST_F(ModelDownloaderTest, StatesOfOneCaseDifferByTheirMessage) {
    using State = ModelDownloader::State;
    EXPECT_EQ((State{Case::failed, QStringLiteral("a")}),
              (State{Case::failed, QStringLiteral("a")}));
    EXPECT_NE((State{Case::failed, QStringLiteral("a")}),
              (State{Case::failed, QStringLiteral("b")}));
    EXPECT_NE(State{Case::idle}, State{Case::paused});
}

}  // namespace quietlark
