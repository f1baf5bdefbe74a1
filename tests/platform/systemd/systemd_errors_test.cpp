#include "platform/linux/systemd/systemd_errors.h"

#include <QDBusMessage>
#include <gtest/gtest.h>

namespace quietlark {
namespace {

QString sentenceFor(const char* errorName) {
    const auto error = QDBusMessage::createError(QLatin1String(errorName), QStringLiteral("Odd."));
    return sentenceForError(QStringLiteral("x.service"), error);
}

TEST(SystemdErrorsTest, AMaskedUnitIsToBeUnmasked) {
    EXPECT_TRUE(sentenceFor("org.freedesktop.systemd1.UnitMasked")
                    .contains(QStringLiteral("systemctl --user unmask x.service")));
}

TEST(SystemdErrorsTest, AMissingUnitIsToBeInstalled) {
    EXPECT_TRUE(sentenceFor("org.freedesktop.DBus.Error.FileNotFound")
                    .contains(QStringLiteral("not installed")));
}

TEST(SystemdErrorsTest, ASessionWithoutAManagerSaysWhatToStart) {
    for (const char* name :
         {"org.freedesktop.DBus.Error.ServiceUnknown", "org.freedesktop.DBus.Error.NameHasNoOwner",
          "org.freedesktop.DBus.Error.Disconnected"}) {
        EXPECT_TRUE(sentenceFor(name).contains(QStringLiteral("quietlark-server"))) << name;
    }
}

TEST(SystemdErrorsTest, AnAnswerThatDoesNotComeIsToBeTriedAgain) {
    for (const char* name :
         {"org.freedesktop.DBus.Error.NoReply", "org.freedesktop.DBus.Error.Timeout"})
        EXPECT_TRUE(sentenceFor(name).contains(QStringLiteral("Try again"))) << name;
}

TEST(SystemdErrorsTest, AnyOtherErrorIsPassedOn) {
    EXPECT_TRUE(sentenceFor("com.example.Strange").endsWith(QStringLiteral("Odd.")));
}

TEST(SystemdErrorsTest, EachJobResultHasItsSentence) {
    const QString unit = QStringLiteral("x.service");
    for (const char* result : {"canceled", "timeout", "failed", "dependency", "skipped", "new"}) {
        const QString sentence = sentenceForJobResult(unit, QLatin1String(result));
        EXPECT_TRUE(sentence.contains(unit)) << sentence.toStdString();
    }
    EXPECT_NE(sentenceForJobResult(unit, QStringLiteral("canceled")),
              sentenceForJobResult(unit, QStringLiteral("failed")));
}

}  // namespace
}  // namespace quietlark
