#include "server/server_presence.h"

#include <fstream>
#include <memory>
#include <optional>
#include <sstream>

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <unistd.h>

#include "fakes/fake_log.h"
#include "server/living_server.h"

namespace quietlark {
namespace {

class FakeAnnouncer final : public ServiceAnnouncer {
public:
    void announce(const ServiceAnnouncement& announcement) override {
        current = announcement;
        ++announcements;
    }
    void withdraw() override { current.reset(); }

    std::optional<ServiceAnnouncement> current;
    int announcements = 0;
};

class ServerPresenceTest : public testing::Test {
protected:
    void appear() {
        m_presence.setSpeed(4);
        ASSERT_TRUE(m_presence.appear(m_identity));
    }

    bool hasFile() const { return access(m_path.c_str(), F_OK) == 0; }

    std::string file() const {
        std::stringstream content;
        content << std::ifstream(m_path).rdbuf();
        return content.str();
    }

    QTemporaryDir m_folder;
    const std::string m_path = m_folder.filePath(QStringLiteral("endpoint")).toStdString();
    const ServerPresence::Identity m_identity{.local = "127.0.0.1:8178",
                                              .display = "desk.local:8178",
                                              .name = "desk",
                                              .port = 8178,
                                              .model = "whisper-base",
                                              .cpu = "Processor 3000"};
    EndpointFileWriter m_endpointFile{m_path};
    FakeAnnouncer m_announcer;
    FakeLog m_log;
    ServerPresence m_presence{m_endpointFile, &m_announcer, m_log};
};

}  // namespace

TEST_F(ServerPresenceTest, NobodyKnowsOfItBeforeItAppears) {
    m_presence.setSpeed(4);
    m_presence.setReady(true);
    EXPECT_FALSE(hasFile());
    EXPECT_FALSE(m_announcer.current);
}

TEST_F(ServerPresenceTest, TheFileAndTheNetworkSayWhatItIs) {
    appear();
    EXPECT_EQ(file(), "local=127.0.0.1:8178\ndisplay=desk.local:8178\nrtf=4.00\n");
    const ServiceAnnouncement expected{
        .name = "desk",
        .port = 8178,
        .txt = {{"rtf", "4.00"}, {"model", "whisper-base"}, {"cpu", "Processor 3000"}}};
    EXPECT_EQ(m_announcer.current, expected);
}

TEST_F(ServerPresenceTest, TheFileKeepsUpAndTheNetworkHearsOfChangesByMoreThanATenth) {
    appear();
    m_presence.setSpeed(4.39);
    EXPECT_NE(file().find("rtf=4.39"), std::string::npos);
    EXPECT_EQ(m_announcer.announcements, 1);
    m_presence.setSpeed(4.41);
    EXPECT_EQ(m_announcer.announcements, 2);
    EXPECT_EQ(m_announcer.current->txt.front().second, "4.41");
    m_presence.setSpeed(3.96);
    EXPECT_EQ(m_announcer.announcements, 3);
}

TEST_F(ServerPresenceTest, ChangesThatNobodyWouldNoticeAreNotWritten) {
    appear();
    m_presence.setSpeed(4.03);
    m_presence.setSpeed(3.97);
    EXPECT_NE(file().find("rtf=4.00"), std::string::npos);
    m_presence.setSpeed(4.05);
    EXPECT_NE(file().find("rtf=4.05"), std::string::npos);
}

TEST_F(ServerPresenceTest, WhileItCannotTranscribeItIsNotThere) {
    appear();
    m_presence.setReady(false);
    EXPECT_FALSE(hasFile());
    EXPECT_FALSE(m_announcer.current);
    m_presence.setSpeed(8);
    EXPECT_FALSE(hasFile());
    m_presence.setReady(true);
    EXPECT_NE(file().find("rtf=8.00"), std::string::npos);
    EXPECT_TRUE(m_announcer.current);
}

TEST_F(ServerPresenceTest, OnceGoneItStaysAway) {
    appear();
    m_presence.disappear();
    m_presence.setReady(false);
    m_presence.setReady(true);
    m_presence.setSpeed(9);
    EXPECT_TRUE(m_presence.appear(m_identity));
    EXPECT_FALSE(hasFile());
    EXPECT_FALSE(m_announcer.current);
}

TEST_F(ServerPresenceTest, TheNetworkNeedNotKnow) {
    ServerPresence secret(m_endpointFile, nullptr, m_log);
    EXPECT_TRUE(secret.appear(m_identity));
    EXPECT_TRUE(hasFile());
    secret.disappear();
    EXPECT_FALSE(hasFile());
}

TEST_F(ServerPresenceTest, AnotherServerOfThisComputerIsLeftAloneUntilItIsGone) {
    auto other = std::make_unique<LivingServer>();
    const std::string content = "local=127.0.0.1:" + std::to_string(other->port()) + "\n";
    std::ofstream(m_path) << content;
    appear();
    m_presence.setSpeed(8);
    EXPECT_EQ(file(), content);
    EXPECT_TRUE(m_announcer.current);
    m_presence.refresh();
    EXPECT_EQ(file(), content);
    // As after a crash: its file stays behind.
    other.reset();
    m_presence.refresh();
    EXPECT_NE(file().find("desk.local"), std::string::npos);
}

TEST_F(ServerPresenceTest, AFileThatCannotBeWrittenIsAnError) {
    EndpointFileWriter nowhere("/nowhere/endpoint");
    ServerPresence presence(nowhere, &m_announcer, m_log);
    EXPECT_FALSE(presence.appear(m_identity));
    EXPECT_FALSE(m_announcer.current);
}

TEST_F(ServerPresenceTest, AFileThatSomebodyDeletedIsPutBack) {
    m_presence.refresh();
    EXPECT_FALSE(hasFile());
    appear();
    const std::string content = file();
    unlink(m_path.c_str());
    m_presence.refresh();
    EXPECT_EQ(file(), content);
    EXPECT_TRUE(m_log.contains("is there again"));
    m_presence.disappear();
    m_presence.refresh();
    EXPECT_FALSE(hasFile());
}

TEST_F(ServerPresenceTest, NoFileIsPutBackWhileItCannotTranscribe) {
    appear();
    m_presence.setReady(false);
    m_presence.refresh();
    EXPECT_FALSE(hasFile());
}

}  // namespace quietlark
