#include "local_server/resume_data.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "platform/durable_file.h"

namespace quietlark {

namespace {

const QString now = QStringLiteral("now");

ResumeData example() {
    return {QStringLiteral("https://models.example/m.bin"), "\"tag\"", 100, 40, now};
}

QByteArray exampleWith(const QByteArray& from, const QByteArray& to) {
    QByteArray json = example().toJson();
    EXPECT_TRUE(json.contains(from));
    return json.replace(from, to);
}

}  // namespace

TEST(ResumeDataTest, ComesBackAsItWasWritten) {
    EXPECT_EQ(ResumeData::fromJson(example().toJson()), example());
}

TEST(ResumeDataTest, TheLengthMayBeUnknown) {
    ResumeData data = example();
    data.totalBytes.reset();
    EXPECT_EQ(ResumeData::fromJson(data.toJson()), data);
}

TEST(ResumeDataTest, GarbageIsNothing) {
    for (const char* garbage : {"", "\xff\xfe", "[]", "{}", "null", "{\"validator\":"})
        EXPECT_EQ(ResumeData::fromJson(garbage), std::nullopt) << garbage;
}

TEST(ResumeDataTest, AValidatorThatWouldEndItsHeaderIsNothing) {
    EXPECT_EQ(ResumeData::fromJson(exampleWith("tag", "tag\\r\\nX: y")), std::nullopt);
    EXPECT_EQ(ResumeData::fromJson(exampleWith("\\\"tag\\\"", "")), std::nullopt);
}

TEST(ResumeDataTest, CountsThatCannotBeAreNothing) {
    EXPECT_EQ(ResumeData::fromJson(exampleWith("40", "-1")), std::nullopt);
    EXPECT_EQ(ResumeData::fromJson(exampleWith("40", "1e300")), std::nullopt);
    EXPECT_EQ(ResumeData::fromJson(exampleWith("100", "\"many\"")), std::nullopt);
}

TEST(ResumeDataTest, AllOfTheFileCountsAsLongAsTheComputerRuns) {
    EXPECT_EQ(example().reliableBytes(70, now), 70);
}

TEST(ResumeDataTest, OnlyWhatWasSyncedCountsAfterANewStart) {
    EXPECT_EQ(example().reliableBytes(70, QStringLiteral("later")), 40);
    EXPECT_EQ(example().reliableBytes(30, QStringLiteral("later")), 30);
}

TEST(ResumeDataTest, OnlyWhatWasSyncedCountsWhereTheSystemDoesNotTell) {
    ResumeData data = example();
    data.bootSession.clear();
    EXPECT_EQ(data.reliableBytes(70, QString()), 40);
}

TEST(ResumeDataTest, AFileThatIsNotThereIsNothing) {
    const QTemporaryDir home;
    EXPECT_EQ(ResumeData::read(home.filePath(QStringLiteral("none"))), std::nullopt);
}

TEST(ResumeDataTest, FillsOneSectorIfItFits) {
    ResumeData data = example();
    EXPECT_EQ(data.toJson().size(), sectorBytes);
    data.syncedBytes = 1'624'555'275;
    EXPECT_EQ(data.toJson().size(), sectorBytes);
    data.url += QString(1000, u'x');
    EXPECT_EQ(ResumeData::fromJson(data.toJson()), data);
}

}  // namespace quietlark
