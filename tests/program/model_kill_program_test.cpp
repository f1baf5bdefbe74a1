#include <iostream>

#include "peers/file_server.h"
#include "program/model_program_fixture.h"

namespace quietlark {

namespace {

/// Downloads that are killed at any moment, without a word.
class ModelKillProgramTest : public ModelProgramFixture {
protected:
    ModelKillProgramTest() : m_server(writeModel()) {
        m_url = m_server.url(QStringLiteral("/model.bin"));
    }

    /// A moment is counted from the program's start or, most of the time, from its request. True
    /// when the program was being answered then, or had been.
    [[nodiscard]] bool killAt(bool afterRequest, std::chrono::milliseconds delay) const {
        const auto answerCount = m_server.answers().size();
        QProcess program;
        program.setProcessEnvironment(environment());
        program.start(QStringLiteral(QUIETLARK_PROGRAM),
                      {QStringLiteral("model"), QStringLiteral("download")});
        const auto hasAsked = [&] { return m_server.answers().size() > answerCount; };
        while (afterRequest && !hasAsked() && !program.waitForFinished(1)) {
        }
        program.waitForFinished(static_cast<int>(delay.count()));
        program.kill();
        program.waitForFinished();
        if (program.exitStatus() == QProcess::CrashExit) return hasAsked();
        EXPECT_EQ(program.exitCode(), 0) << program.readAllStandardError().toStdString();
        return false;
    }

    [[nodiscard]] qint64 bytesThere() const {
        return std::max(QFile(m_files.received()).size(), QFile(m_files.partial()).size());
    }
    /// Looks at the answers that were given to the program that has just ended, and which had found
    /// so many bytes.
    void count(qint64 bytesFound) {
        ASSERT_TRUE(waitUntil([this] { return m_server.openConnectionCount() == 0; }));
        // Without a digest the server confirms the length with the last byte.
        if (m_sha256.isEmpty()) bytesFound = std::min<qint64>(bytesFound, m_model.size() - 1);
        const auto answers = m_server.answers();
        for (; m_countedAnswers < answers.size(); ++m_countedAnswers) {
            const auto& answer = answers[m_countedAnswers];
            m_mostAskedAgain = std::max(m_mostAskedAgain, bytesFound - answer.firstByte);
            m_mostSentAgain = std::max(m_mostSentAgain, m_sentUpTo - answer.firstByte);
            m_sentUpTo = answer.firstByte + answer.acknowledgedBytes;
        }
    }
    /// That whatever is installed is the model; makes room for the next.
    void takeModel() {
        if (!m_files.isInstalled()) return;
        EXPECT_EQ(read(m_files.active()), m_model);
        QFile::remove(m_files.active());
        m_sentUpTo = 0;
        ++m_installCount;
    }

    const QByteArray m_model = someBytes(24 * mebibyte);
    const QString m_digest = sha256(m_model);
    QTemporaryDir m_serverHome;
    FileServer m_server;
    std::size_t m_countedAnswers = 0;
    qint64 m_sentUpTo = 0;  ///< the byte up to which the model has reached this computer
    qint64 m_mostAskedAgain = 0;
    qint64 m_mostSentAgain = 0;
    int m_installCount = 0;

private:
    [[nodiscard]] QString writeModel() const {
        QFile file(m_serverHome.filePath(QStringLiteral("model.bin")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(m_model);
        return file.fileName();
    }
};

}  // namespace

TEST_F(ModelKillProgramTest, NoMomentInstallsAWrongFileOrCostsMoreThanAMebibyte) {
    constexpr int kills = 200;
    const auto seed = std::random_device()();
    std::cout << "seed " << seed << std::endl;
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> milliseconds(0, 40);
    for (int killed = 0; killed < kills;) {
        // The digest would hide bytes that were joined wrongly: every second time there is none.
        m_sha256 = killed % 2 == 0 ? m_digest : QString();
        const qint64 before = bytesThere();
        const bool afterRequest = random() % 4 != 0;
        const bool wasAnswered =
            killAt(afterRequest, std::chrono::milliseconds(milliseconds(random)));
        count(before);
        takeModel();
        if (wasAnswered) ++killed;
    }
    m_sha256 = m_digest;
    const qint64 before = bytesThere();
    EXPECT_EQ(run(QStringLiteral("download")).exitCode, 0);
    count(before);
    takeModel();
    // Nothing that is on the disk is asked for again. By the server's count there is also what had
    // reached this computer, but not the program.
    EXPECT_LE(m_mostAskedAgain, 0) << "seed " << seed;
    EXPECT_LE(m_mostSentAgain, mebibyte) << "seed " << seed;
    std::cout << m_installCount << " installs, at most " << m_mostSentAgain << " bytes sent again"
              << std::endl;
}

}  // namespace quietlark
