#include "commands/command_line.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

Invocation parsed(const char* arguments) {
    const QString line = QStringLiteral("quietlark ") + QString::fromUtf8(arguments);
    return parseCommandLine(line.split(u' ', Qt::SkipEmptyParts));
}

TranscribeArguments transcribe(const char* arguments) {
    return std::get<TranscribeArguments>(parsed(arguments));
}

void expectUsageError(const char* arguments) {
    const Invocation invocation = parsed(arguments);
    ASSERT_TRUE(std::holds_alternative<UsageError>(invocation)) << arguments;
    EXPECT_TRUE(std::get<UsageError>(invocation).sentence.endsWith(u'.')) << arguments;
}

void expectText(const char* arguments, const char* words) {
    const Invocation invocation = parsed(arguments);
    ASSERT_TRUE(std::holds_alternative<ShowText>(invocation)) << arguments;
    const QString text = std::get<ShowText>(invocation).text;
    EXPECT_TRUE(text.contains(QString::fromUtf8(words))) << text.toStdString();
}

TEST(CommandLineTest, NoCommandStartsTheApplication) {
    EXPECT_TRUE(std::holds_alternative<StartApplication>(parsed("")));
}

TEST(CommandLineTest, TranscribeNeedsOnlyAFile) {
    const TranscribeArguments arguments = transcribe("transcribe a.wav");
    EXPECT_EQ(arguments.file, QStringLiteral("a.wav"));
    EXPECT_EQ(arguments.server, std::nullopt);
    EXPECT_EQ(arguments.language, std::nullopt);
}

TEST(CommandLineTest, TranscribeTakesServerAndLanguageOnEitherSide) {
    for (const char* line : {"transcribe --server http://h:1 --language de a.wav",
                             "transcribe a.wav --language=de --server=http://h:1"}) {
        const TranscribeArguments arguments = transcribe(line);
        EXPECT_EQ(arguments.file, QStringLiteral("a.wav"));
        EXPECT_EQ(arguments.server, QStringLiteral("http://h:1"));
        EXPECT_EQ(arguments.language, QStringLiteral("de"));
    }
}

TEST(CommandLineTest, EmptyLanguageIsALanguage) {
    EXPECT_EQ(transcribe("transcribe a.wav --language=").language, QString());
}

TEST(CommandLineTest, HyphenIsStandardInput) {
    EXPECT_EQ(transcribe("transcribe -").file, QStringLiteral("-"));
}

TEST(CommandLineTest, FileMayBeginWithAHyphenAfterTwo) {
    EXPECT_EQ(transcribe("transcribe -- -x.wav").file, QStringLiteral("-x.wav"));
}

TEST(CommandLineTest, TranscribeWithoutExactlyOneFileIsWrongUsage) {
    expectUsageError("transcribe");
    expectUsageError("transcribe --language de");
    expectUsageError("transcribe a.wav b.wav");
}

TEST(CommandLineTest, AMistakeIsQuotedAsItIsEvenWithWhatLooksLikeAPlaceholder) {
    EXPECT_TRUE(std::get<UsageError>(parsed("servers --seconds %2"))
                    .sentence.startsWith(QStringLiteral("“%2” is not a number of seconds")));
}

TEST(CommandLineTest, UnknownAndIncompleteOptionsAreWrongUsage) {
    expectUsageError("transcribe a.wav --loud");
    expectUsageError("transcribe a.wav --server");
    expectUsageError("--loud");
    expectUsageError("-x");
}

TEST(CommandLineTest, ServerMustBeAWebAddress) {
    for (const char* server : {"h", "h:1", "127.0.0.1:8080", "ftp://h", "http://", "file:///a"}) {
        expectUsageError((std::string("probe ") + server).c_str());
        expectUsageError((std::string("transcribe a.wav --server ") + server).c_str());
    }
    expectUsageError("transcribe a.wav --server=");
}

TEST(CommandLineTest, ProbeTakesOneAddress) {
    EXPECT_EQ(std::get<ProbeArguments>(parsed("probe https://h/x")).server,
              QStringLiteral("https://h/x"));
    expectUsageError("probe");
    expectUsageError("probe http://h http://g");
}

TEST(CommandLineTest, ModelTakesAnAction) {
    EXPECT_EQ(std::get<ModelArguments>(parsed("model status")).action,
              ModelArguments::Action::Status);
    EXPECT_EQ(std::get<ModelArguments>(parsed("model download")).action,
              ModelArguments::Action::Download);
    expectUsageError("model");
    expectUsageError("model delete");
    expectUsageError("model status download");
}

TEST(CommandLineTest, DictationTakesOneOfItsActions) {
    const auto orderOf = [](const char* line) {
        return std::get<DictationArguments>(parsed(line)).order;
    };
    EXPECT_EQ(orderOf("dictation start"), DictationOrder::start);
    EXPECT_EQ(orderOf("dictation stop"), DictationOrder::stop);
    EXPECT_EQ(orderOf("dictation toggle"), DictationOrder::toggle);
    EXPECT_EQ(orderOf("dictation status"), DictationOrder::status);
    expectUsageError("dictation");
    expectUsageError("dictation begin");
    expectUsageError("dictation start stop");
}

TEST(CommandLineTest, ServersAreListenedForAFewSecondsOrAsLongAsSaid) {
    const auto durationOf = [](const char* line) {
        return std::get<ServersArguments>(parsed(line)).duration;
    };
    EXPECT_EQ(durationOf("servers"), std::chrono::seconds(3));
    EXPECT_EQ(durationOf("servers --seconds 10"), std::chrono::seconds(10));
    for (const char* number : {"0", "-1", "1.5", "many", "99999"})
        expectUsageError((std::string("servers --seconds ") + number).c_str());
    expectUsageError("servers 10");
}

TEST(CommandLineTest, DoctorTakesNothing) {
    EXPECT_TRUE(std::holds_alternative<DoctorArguments>(parsed("doctor")));
    expectUsageError("doctor now");
    expectText("doctor --help", "Usage: quietlark doctor [OPTIONS]\n");
}

TEST(CommandLineTest, UnknownCommandIsWrongUsage) {
    expectUsageError("dictate");
}

TEST(CommandLineTest, HelpListsTheCommands) {
    expectText("--help", "transcribe FILE.wav");
    expectText("-h", "probe URL");
}

TEST(CommandLineTest, EachCommandHasItsOwnHelp) {
    expectText("transcribe --help", "quietlark transcribe [OPTIONS] FILE.wav");
    expectText("transcribe --help", "--language");
    expectText("probe -h", "quietlark probe [OPTIONS] URL");
    expectText("model --help", "quietlark model [OPTIONS] ACTION");
}

TEST(CommandLineTest, VersionIsShown) {
    expectText("--version", "quietlark 0.");
    expectText("-v", "quietlark 0.");
}

}  // namespace
}  // namespace quietlark
