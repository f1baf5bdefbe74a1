#include "server/endpoint_file_writer.h"

#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <thread>

#include <QTcpServer>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <httplib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "server/host_description.h"
#include "server/living_server.h"

namespace quietlark {
namespace {

class EndpointFileWriterTest : public testing::Test {
protected:
    std::string pathOf(const char* name) const {
        return m_folder.filePath(QLatin1String(name)).toStdString();
    }

    static std::string read(const std::string& path) {
        std::stringstream content;
        content << std::ifstream(path).rdbuf();
        return content.str();
    }

    static void write(const std::string& path, const char* content) {
        std::ofstream(path) << content;
    }

    std::size_t filesInFolder() const {
        return static_cast<std::size_t>(
            QDir(m_folder.path())
                .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System)
                .size());
    }

    bool exists() const { return access(m_path.c_str(), F_OK) == 0; }

    QTemporaryDir m_folder;
    const std::string m_path = pathOf("quietlark.endpoint");
    std::unique_ptr<EndpointFileWriter> m_writer = std::make_unique<EndpointFileWriter>(m_path);
    const EndpointDescription m_description{
        .local = "127.0.0.1:8178", .display = "127.0.0.1:8178", .rtf = 4.3456};
};

}  // namespace

TEST_F(EndpointFileWriterTest, TheFileAppearsWithPublish) {
    EXPECT_FALSE(exists());
    EXPECT_TRUE(m_writer->publish(m_description));
    EXPECT_EQ(read(m_path), "local=127.0.0.1:8178\ndisplay=127.0.0.1:8178\nrtf=4.35\n");
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(EndpointFileWriterTest, EveryoneMayReadAndOnlyTheOwnerWrite) {
    EXPECT_TRUE(m_writer->publish(m_description));
    struct stat file {};
    ASSERT_EQ(lstat(m_path.c_str(), &file), 0);
    EXPECT_TRUE(S_ISREG(file.st_mode));
    EXPECT_EQ(file.st_mode & 07777U, 0644U);
}

TEST_F(EndpointFileWriterTest, TheFileGoesWithTheWriter) {
    EXPECT_TRUE(m_writer->publish(m_description));
    m_writer.reset();
    EXPECT_FALSE(exists());
}

TEST_F(EndpointFileWriterTest, AFileLeftBehindIsReplaced) {
    write(m_path, "local=127.0.0.1:1\n");
    EXPECT_TRUE(m_writer->publish(m_description));
    EXPECT_NE(read(m_path).find("127.0.0.1:8178"), std::string::npos);
}

TEST_F(EndpointFileWriterTest, PublishingAgainReplacesTheFile) {
    EXPECT_TRUE(m_writer->publish(m_description));
    auto faster = m_description;
    faster.rtf = 9;
    EXPECT_TRUE(m_writer->publish(faster));
    EXPECT_NE(read(m_path).find("rtf=9.00"), std::string::npos);
    EXPECT_EQ(filesInFolder(), 1U);
    m_writer->withdraw();
    EXPECT_FALSE(exists());
}

TEST_F(EndpointFileWriterTest, WhatACrashLeftBehindIsRemoved) {
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    write(m_path, ("local=127.0.0.1:" + std::to_string(server.serverPort()) + "\n").c_str());
    m_writer->removeLeftover();
    EXPECT_TRUE(exists()) << "somebody listens there";
    server.close();
    m_writer->removeLeftover();
    EXPECT_FALSE(exists());
}

TEST_F(EndpointFileWriterTest, TheFileOfALivingServerStaysWhateverAddressItListensOn) {
    for (const char* host : {"127.0.0.5", "::1"}) {
        QTcpServer server;
        if (!server.listen(QHostAddress(QLatin1String(host))))
            GTEST_SKIP() << "This computer does not have the address " << host << ".";
        write(m_path, ("local=" + localAddress(host, server.serverPort()) + "\n").c_str());
        m_writer->removeLeftover();
        EXPECT_TRUE(exists()) << host;
        server.close();
        m_writer->removeLeftover();
        EXPECT_FALSE(exists()) << host;
    }
}

TEST_F(EndpointFileWriterTest, WhereNobodyKnowsWhetherAServerListensTheFileStays) {
    for (const char* address : {"desk.invalid:1", "[::1]:99999", ":1"}) {
        write(m_path, ("local=" + std::string(address) + "\n").c_str());
        m_writer->removeLeftover();
        EXPECT_TRUE(exists()) << address;
    }
}

TEST_F(EndpointFileWriterTest, WhatIsNoLeftoverStays) {
    write(m_path, "precious");
    m_writer->removeLeftover();
    EXPECT_TRUE(exists());
    unlink(m_path.c_str());
    ASSERT_EQ(mkfifo(m_path.c_str(), 0600), 0);
    m_writer->removeLeftover();
    EXPECT_TRUE(exists());
}

TEST_F(EndpointFileWriterTest, AnotherServersFileStays) {
    EXPECT_TRUE(m_writer->publish(m_description));
    EndpointFileWriter other(m_path);
    EXPECT_TRUE(other.publish(m_description));
    m_writer->withdraw();
    EXPECT_TRUE(exists());
    other.withdraw();
    EXPECT_FALSE(exists());
}

TEST_F(EndpointFileWriterTest, ALivingServersFileIsReplacedOnlyWhenItIsGone) {
    for (const char* host : {"127.0.0.1", "127.0.0.5", "::1"}) {
        auto server = std::make_unique<LivingServer>(host);
        if (!server->isBound())
            GTEST_SKIP() << "This computer does not have the address " << host << ".";
        const std::string living = localAddress(host, server->port());
        write(m_path, ("local=" + living + "\n").c_str());
        EXPECT_TRUE(m_writer->publish(m_description));
        EXPECT_FALSE(m_writer->isPublished()) << host;
        m_writer->withdraw();
        EXPECT_EQ(read(m_path), "local=" + living + "\n");
        server.reset();
        EXPECT_TRUE(m_writer->publish(m_description));
        EXPECT_TRUE(m_writer->isPublished()) << host;
        m_writer->withdraw();
    }
}

TEST_F(EndpointFileWriterTest, AnotherProgramAtThePortOfAServerThatCrashedKeepsNobodyOut) {
    QTcpServer silent;
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
    httplib::Server web;
    web.Get("/health", [](const auto&, auto& out) { out.set_content("OK", "text/plain"); });
    const int webPort = web.bind_to_any_port("127.0.0.1");
    std::thread thread([&] { web.listen_after_bind(); });
    for (const int port : {int{silent.serverPort()}, webPort}) {
        write(m_path, ("local=" + localAddress("127.0.0.1", port) + "\n").c_str());
        EXPECT_TRUE(m_writer->publish(m_description));
        EXPECT_TRUE(m_writer->isPublished()) << (port == webPort ? "web" : "silent");
        m_writer->withdraw();
    }
    web.stop();
    thread.join();
}

TEST_F(EndpointFileWriterTest, WhatListensAtItsOwnAddressIsItself) {
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    auto own = m_description;
    own.local = localAddress("127.0.0.1", server.serverPort());
    write(m_path, ("local=" + own.local + "\nrtf=1.00\n").c_str());
    EXPECT_TRUE(m_writer->publish(own));
    EXPECT_TRUE(m_writer->isPublished());
}

TEST_F(EndpointFileWriterTest, AFileWithTheSameContentInItsPlaceStays) {
    EXPECT_TRUE(m_writer->publish(m_description));
    const std::string content = read(m_path);
    unlink(m_path.c_str());
    write(m_path, content.c_str());
    m_writer->withdraw();
    EXPECT_TRUE(exists());
}

TEST_F(EndpointFileWriterTest, ALinkInItsPlaceIsReplacedAndNotFollowed) {
    const std::string victim = pathOf("victim");
    write(victim, "precious");
    ASSERT_EQ(symlink(victim.c_str(), m_path.c_str()), 0);
    EXPECT_TRUE(m_writer->publish(m_description));
    EXPECT_EQ(read(victim), "precious");
    struct stat file {};
    ASSERT_EQ(lstat(m_path.c_str(), &file), 0);
    EXPECT_TRUE(S_ISREG(file.st_mode));
}

TEST_F(EndpointFileWriterTest, AFolderThatIsNotThereIsNamed) {
    EndpointFileWriter writer("/nowhere/quietlark.endpoint");
    EXPECT_EQ(writer.publish(m_description).error(),
              "Cannot write /nowhere/quietlark.endpoint: No such file or directory.");
}

TEST_F(EndpointFileWriterTest, CheckingLeavesNothingBehind) {
    EXPECT_TRUE(m_writer->check());
    EXPECT_EQ(filesInFolder(), 0U);
    EXPECT_TRUE(m_writer->publish(m_description));
    EXPECT_TRUE(m_writer->check());
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(EndpointFileWriterTest, WhatIsInTheWayIsNamedBeforehandAsAfterwards) {
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("quietlark.endpoint")));
    EXPECT_EQ(m_writer->check().error(), m_writer->publish(m_description).error());
    EndpointFileWriter nowhere("/nowhere/endpoint");
    EXPECT_EQ(nowhere.check().error(), nowhere.publish(m_description).error());
}

TEST_F(EndpointFileWriterTest, AFailureLeavesNothingBehind) {
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("quietlark.endpoint")));
    EXPECT_EQ(m_writer->publish(m_description).error(),
              "Cannot write " + m_path + ": Is a directory.");
    EXPECT_EQ(filesInFolder(), 1U);
    m_writer->withdraw();
    EXPECT_TRUE(exists());
}

TEST_F(EndpointFileWriterTest, AFileOfAnotherUserIsNamedAsTheReasonBeforehandToo) {
    if (geteuid() != 0) GTEST_SKIP() << "Only root can become another user.";
    ASSERT_TRUE(m_writer->publish(m_description));
    ASSERT_EQ(chmod(m_folder.path().toLocal8Bit().constData(), 01777), 0);
    const auto publishAsNobody = [this] {
        constexpr uid_t nobody = 65534;
        if (setuid(nobody) != 0) _exit(2);
        const auto checked = EndpointFileWriter(m_path).check();
        const auto published = EndpointFileWriter(m_path).publish(m_description);
        std::cerr << (published ? "published" : published.error());
        _exit(!checked && !published && checked.error() == published.error() ? 0 : 1);
    };
    EXPECT_EXIT(publishAsNobody(), testing::ExitedWithCode(0), "belongs to another user");
    EXPECT_EQ(read(m_path).substr(0, 6), "local=");
}

}  // namespace quietlark
