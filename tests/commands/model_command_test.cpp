#include "commands/model_command.h"

#include <optional>
#include <sstream>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "commands/console.h"
#include "commands/progress_line.h"
#include "fakes/fake_model_fetcher.h"
#include "fakes/fake_scheduler.h"
#include "local_server/resume_data.h"
#include "notifications/notification_center.h"

namespace quietlark {

namespace {

using Action = ModelArguments::Action;

class ModelCommandTest : public testing::Test {
protected:
    void run(Action action) {
        m_downloader.emplace(m_files, m_fetcher, m_notifications, m_scheduler);
        m_command.emplace(m_files, *m_downloader, m_scheduler, m_progress, m_console);
        m_command->run({action}, [this](ExitCode code) { m_code = code; });
        m_scheduler.runPosted();
    }
    void write(const QString& path, const QByteArray& content) const {
        QDir().mkpath(m_files.directory());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    void installModel() const { write(m_files.active(), "model"); }

    QTemporaryDir m_home;
    const ModelFiles m_files{m_home.filePath(QStringLiteral("models"))};
    const std::string m_file = m_files.active().toStdString();
    FakeModelFetcher m_fetcher;
    FakeScheduler m_scheduler;
    NotificationCenter m_notifications;
    std::ostringstream m_results;
    std::ostringstream m_messages;
    Console m_console{m_results, m_messages};
    ProgressLine m_progress{m_messages, 80};
    std::optional<ModelDownloader> m_downloader;
    std::optional<ModelCommand> m_command;
    std::optional<ExitCode> m_code;
};

}  // namespace

TEST_F(ModelCommandTest, StatusTellsThatTheModelIsMissing) {
    run(Action::Status);
    EXPECT_EQ(m_results.str(), "state=missing\nfile=" + m_file + "\nbytes=0\ntotal=\n");
    EXPECT_EQ(m_code, ExitCode::Done);
    EXPECT_EQ(m_fetcher.fetchCount(), 0);
}

TEST_F(ModelCommandTest, StatusTellsThatTheModelIsInstalled) {
    installModel();
    run(Action::Status);
    EXPECT_EQ(m_results.str(), "state=installed\nfile=" + m_file + "\nbytes=5\ntotal=5\n");
}

TEST_F(ModelCommandTest, DownloadEndsWithTheFile) {
    run(Action::Download);
    EXPECT_EQ(m_code, std::nullopt);
    m_fetcher.succeed();
    EXPECT_EQ(m_results.str(), m_file + "\n");
    EXPECT_EQ(m_code, ExitCode::Done);
}

TEST_F(ModelCommandTest, DownloadShowsItsProgressAndTakesItAway) {
    run(Action::Download);
    m_fetcher.report(50, 100);
    EXPECT_NE(m_messages.str().find(" 50 %"), std::string::npos) << m_messages.str();
    m_fetcher.succeed();
    EXPECT_TRUE(m_messages.str().ends_with("\r\x1b[K"));
}

TEST_F(ModelCommandTest, AModelThatIsThereIsTheResult) {
    installModel();
    run(Action::Download);
    EXPECT_EQ(m_results.str(), m_file + "\n");
    EXPECT_EQ(m_code, ExitCode::Done);
    EXPECT_EQ(m_fetcher.fetchCount(), 0);
}

TEST_F(ModelCommandTest, AFailureIsTold) {
    run(Action::Download);
    m_fetcher.fail(QStringLiteral("Install failed: no luck"));
    EXPECT_EQ(m_messages.str(), "quietlark: Install failed: no luck\n");
    EXPECT_EQ(m_results.str(), "");
    EXPECT_EQ(m_code, ExitCode::Failed);
}

TEST_F(ModelCommandTest, AnInterruptCancelsTheDownload) {
    run(Action::Download);
    m_command->interrupt();
    m_command->interrupt();
    EXPECT_FALSE(m_fetcher.isFetching());
    EXPECT_EQ(m_code, std::nullopt);
    m_fetcher.becomeStill();
    EXPECT_EQ(m_messages.str(), "quietlark: Stopped; the next download starts anew.\n");
    EXPECT_EQ(m_code, ExitCode::Failed);
}

TEST_F(ModelCommandTest, AnInterruptSaysWhetherTheNextDownloadContinues) {
    run(Action::Download);
    const ResumeData data{{}, "\"one\"", 10, 5, {}};
    write(m_files.resume(), data.toJson());
    write(m_files.received(), "01234");
    m_command->interrupt();
    m_fetcher.becomeStill();
    EXPECT_EQ(m_messages.str(), "quietlark: Stopped; the next download continues from here.\n");
}

TEST_F(ModelCommandTest, AnInterruptDuringTheLastStepComesTooLate) {
    run(Action::Download);
    m_command->interrupt();
    installModel();
    m_fetcher.becomeStill();
    EXPECT_EQ(m_results.str(), m_files.active().toStdString() + "\n");
    EXPECT_EQ(m_code, ExitCode::Done);
}

TEST_F(ModelCommandTest, AResultThatCannotBeWrittenIsAFailure) {
    m_results.setstate(std::ios::badbit);
    run(Action::Status);
    EXPECT_EQ(m_messages.str(), "quietlark: The result could not be written.\n");
    EXPECT_EQ(m_code, ExitCode::Failed);
}

}  // namespace quietlark
