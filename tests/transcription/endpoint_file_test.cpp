#include <sys/stat.h>

#include "transcription/endpoint_file_fixture.h"

namespace quietlark {
namespace {

class EndpointFileTest : public EndpointFileFixture {
protected:
    void expectLocal(const QByteArray& content, const char* local) const {
        write(content);
        EXPECT_EQ(m_endpointFile.read(), QString::fromUtf8(local)) << content.toStdString();
    }
    void expectNoLocal(const QByteArray& content) const {
        write(content);
        EXPECT_EQ(m_endpointFile.read(), std::nullopt) << content.toStdString();
    }
    void expectRTF(const QByteArray& value, std::optional<double> rtf) const {
        write("rtf=" + value + "\n");
        EXPECT_EQ(m_endpointFile.readRTF(), rtf) << value.toStdString();
    }
};

TEST_F(EndpointFileTest, SpacesAndTabsAroundKeyAndValueAreDropped) {
    expectLocal("local = 127.0.0.1:8080\n", "127.0.0.1:8080");
    expectLocal(" \tlocal\t=\t 127.0.0.1:8080 \t", "127.0.0.1:8080");
}

TEST_F(EndpointFileTest, OtherWhiteSpaceIsPartOfTheValue) {
    expectLocal("local=\xc2\xa0h\n", "\xc2\xa0h");
}

TEST_F(EndpointFileTest, LinesEndAtLineFeedsAndCarriageReturns) {
    expectLocal("rtf=1\rlocal=h:1\rdisplay=x", "h:1");
    expectLocal("rtf=1\r\n\r\n\n\nlocal=h:1\r\n", "h:1");
}

TEST_F(EndpointFileTest, ValueMayHoldFurtherEqualsSigns) {
    expectLocal("local=a=b=c\n", "a=b=c");
}

TEST_F(EndpointFileTest, LinesWithoutKeyOrEqualsSignAreSkipped) {
    expectLocal("nothing\n=value\n  \n = \nlocal=h:1\nlocal\n", "h:1");
}

TEST_F(EndpointFileTest, LastOfRepeatedKeysWins) {
    expectLocal("local=a\nlocal=b\n", "b");
    expectNoLocal("local=a\nlocal=\n");
}

TEST_F(EndpointFileTest, AFileThatSaysNothingElseIsAServers) {
    write("local=127.0.0.1:8080\ndisplay=desk:8080\nrtf=2.5\n");
    EXPECT_TRUE(m_endpointFile.isServers());
    write(" local = h:1");
    EXPECT_TRUE(m_endpointFile.isServers());
}

TEST_F(EndpointFileTest, AFileThatSaysAnythingElseIsNot) {
    for (const char* content : {"", "local=\n", "rtf=1\n", "local=h:1\nDear diary\n",
                                "local=h:1\n\nrtf=1\n", "local=h:1\npath=/usr/bin\n", "\xff"}) {
        write(content);
        EXPECT_FALSE(m_endpointFile.isServers()) << content;
    }
}

TEST_F(EndpointFileTest, AFileThatIsMissingOrDistrustedIsNot) {
    EXPECT_FALSE(EndpointFile(QString()).isServers());
    EXPECT_FALSE(EndpointFile(QStringLiteral("/missing")).isServers());
    write("local=h:1\n");
    ASSERT_EQ(::chmod(QFile::encodeName(m_endpointFile.path()).constData(), 0666), 0);
    EXPECT_FALSE(m_endpointFile.isServers());
}

TEST_F(EndpointFileTest, TheUsualNameIsAServersWhateverTheFileSays) {
    EXPECT_TRUE(EndpointFile(QStringLiteral("/tmp/quietlark.endpoint")).isServers());
}

TEST_F(EndpointFileTest, KeysAreCaseSensitiveAndOthersIgnored) {
    expectNoLocal("Local=a\nhost=b\n");
}

TEST_F(EndpointFileTest, EmptyValueIsAbsent) {
    expectNoLocal("local=\n");
    expectNoLocal("local=  \t\n");
}

TEST_F(EndpointFileTest, DisplayAloneIsShownButIsNoAddress) {
    write("display = Studio:8080\n");
    EXPECT_EQ(m_endpointFile.read(), std::nullopt);
    EXPECT_EQ(m_endpointFile.readDisplay(), QStringLiteral("Studio:8080"));
}

TEST_F(EndpointFileTest, EmptyDisplayFallsBackToTheAddress) {
    write("display=\nlocal=h:1\n");
    EXPECT_EQ(m_endpointFile.readDisplay(), QStringLiteral("h:1"));
    write("local=h:2\n");
    EXPECT_EQ(m_endpointFile.readDisplay(), QStringLiteral("h:2"));
}

TEST_F(EndpointFileTest, WholeNumberTextIsASpeedFactor) {
    expectRTF("0.25", 0.25);
    expectRTF("12", 12.0);
    expectRTF("1e1", 10.0);
    expectRTF("-2.5", -2.5);
    expectRTF("+2.5", 2.5);
    expectRTF(".5", 0.5);
}

TEST_F(EndpointFileTest, AnyOtherTextIsNoSpeedFactor) {
    for (const char* value : {"abc", "0.25x", "0,25", "", "1 2", "+-1", "++1", "nan", "inf",
                              "1e999", "0x10", "٣", "1\xc2\xa0"}) {
        expectRTF(value, std::nullopt);
    }
}

TEST_F(EndpointFileTest, MissingFileGivesNothing) {
    EXPECT_EQ(m_endpointFile.read(), std::nullopt);
    EXPECT_EQ(m_endpointFile.readDisplay(), std::nullopt);
    EXPECT_EQ(m_endpointFile.readRTF(), std::nullopt);
}

TEST_F(EndpointFileTest, EmptyFileGivesNothing) {
    expectNoLocal("");
    expectNoLocal("\n\n");
}

TEST_F(EndpointFileTest, FileThatIsNotUtf8GivesNothing) {
    expectNoLocal("local=h:1\ndisplay=\xff\n");
    expectNoLocal("local=h:1\ndisplay=\xc3");
}

TEST_F(EndpointFileTest, FileThatIsTooLongGivesNothing) {
    expectNoLocal("local=h:1\n" + QByteArray(64 * 1024, '\n'));
}

TEST_F(EndpointFileTest, FileThatOthersMayWriteGivesNothing) {
    write("local=h:1\n");
    ASSERT_EQ(::chmod(QFile::encodeName(m_path).constData(), 0666), 0);
    EXPECT_EQ(m_endpointFile.read(), std::nullopt);
}

TEST_F(EndpointFileTest, LinkGivesNothing) {
    write("local=h:1\n");
    const QString link = m_directory.filePath(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(m_path, link));
    EXPECT_EQ(EndpointFile(link).read(), std::nullopt);
}

TEST_F(EndpointFileTest, PipeGivesNothingAtOnce) {
    ASSERT_EQ(::mkfifo(QFile::encodeName(m_path).constData(), 0600), 0);
    EXPECT_EQ(m_endpointFile.read(), std::nullopt);
}

TEST_F(EndpointFileTest, EachCallReadsTheFileAfresh) {
    expectLocal("local=a\n", "a");
    expectLocal("local=b\n", "b");
}

TEST_F(EndpointFileTest, EnvironmentMayNameAnotherFile) {
    qunsetenv("QUIETLARK_ENDPOINT_FILE");
    EXPECT_EQ(EndpointFile::defaultPath(), QStringLiteral("/tmp/quietlark.endpoint"));
    qputenv("QUIETLARK_ENDPOINT_FILE", "/somewhere/else");
    EXPECT_EQ(EndpointFile::defaultPath(), QStringLiteral("/somewhere/else"));
    qunsetenv("QUIETLARK_ENDPOINT_FILE");
}

}  // namespace
}  // namespace quietlark
