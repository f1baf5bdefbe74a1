#include "platform/linux/removal/linux_privacy_records.h"

#include "platform/removal/file_tree.h"
#include "support/wait.h"

namespace quietlark {
namespace {

/// With a stand-in for the program that asks for the administrator's password.
class LinuxPrivacyRecordsTest : public FileTree {
protected:
    void askerDoes(const QByteArray& script) {
        write("asker", "#!/bin/sh\n" + script);
        ASSERT_TRUE(QFile::setPermissions(at("asker"), QFile::ReadOwner | QFile::ExeOwner));
    }

    /// Answers whether it ended.
    bool run(const QString& line) {
        LinuxPrivacyRecords records(at("asker"));
        int ends = 0;
        const auto running = records.runAsAdministrator(line, [&ends] { ++ends; });
        EXPECT_EQ(ends, 0);
        return waitUntil([&ends] { return ends > 0; }) && ends == 1;
    }
};

TEST_F(LinuxPrivacyRecordsTest, ThereIsNothingToResetForAnyService) {
    const LinuxPrivacyRecords records;
    for (const auto service :
         {PrivacyService::Microphone, PrivacyService::ListenEvent, PrivacyService::Accessibility,
          PrivacyService::AppleEvents, PrivacyService::PostEvent})
        EXPECT_FALSE(records.resetCommand(service, QStringLiteral("net.quietlark.app")));
}

TEST_F(LinuxPrivacyRecordsTest, TheLineRunsInOneShell) {
    askerDoes("exec \"$@\"\n");
    EXPECT_TRUE(run(
        QStringLiteral("false 2>/dev/null || true; echo \"it's done\" > '%1'").arg(at("result"))));
    EXPECT_EQ(read(at("result")), "it's done\n");
}

TEST_F(LinuxPrivacyRecordsTest, DecliningEndsItToo) {
    askerDoes("exit 126\n");
    EXPECT_TRUE(run(QStringLiteral("echo done > '%1'").arg(at("result"))));
    EXPECT_FALSE(exists("result"));
}

TEST_F(LinuxPrivacyRecordsTest, ItEndsWhereNobodyCanAskAndWhereTheAskerCrashes) {
    EXPECT_TRUE(run(QStringLiteral("true")));
    askerDoes("kill -9 $$\n");
    EXPECT_TRUE(run(QStringLiteral("true")));
}

TEST_F(LinuxPrivacyRecordsTest, NobodyIsToldOnceTheHandleIsGone) {
    askerDoes("exec \"$@\"\n");
    LinuxPrivacyRecords records(at("asker"));
    bool told = false;
    {
        const auto running = records.runAsAdministrator(
            QStringLiteral("echo done > '%1'").arg(at("result")), [&told] { told = true; });
    }
    EXPECT_TRUE(run(QStringLiteral("while ! [ -s '%1' ]; do :; done").arg(at("result"))));
    EXPECT_FALSE(told);
}

}  // namespace
}  // namespace quietlark
