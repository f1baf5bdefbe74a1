#include "transcription/transcriber.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

using Transcriber::FormFields;

FormFields fields(ServerFlavor flavor, std::optional<QString> model, const char* language) {
    return Transcriber::formFields(flavor, model, QString::fromUtf8(language));
}

std::pair<QString, QString> field(const char* name, const char* value) {
    return {QString::fromUtf8(name), QString::fromUtf8(value)};
}

QString cleaned(const char* text) {
    return Transcriber::clean(QString::fromUtf8(text));
}

QString harmless(const QString& text) {
    return Transcriber::withoutControlCharacters(text);
}

TEST(TranscriberTest, OpenAIWithoutModelAndLanguageSendsTheDefaultModelAlone) {
    EXPECT_EQ(fields(ServerFlavor::openai, std::nullopt, ""),
              FormFields{field("model", "whisper-1")});
}

TEST(TranscriberTest, OpenAISendsTheGivenModelThenTheLanguage) {
    EXPECT_EQ(fields(ServerFlavor::openai, QStringLiteral("m"), "de"),
              (FormFields{field("model", "m"), field("language", "de")}));
}

TEST(TranscriberTest, EmptyModelIsSentAsItIs) {
    EXPECT_EQ(fields(ServerFlavor::openai, QString(), ""), FormFields{field("model", "")});
}

TEST(TranscriberTest, WhisperCppIgnoresTheModel) {
    EXPECT_EQ(fields(ServerFlavor::whispercpp, QStringLiteral("x"), "de"),
              (FormFields{field("response_format", "json"), field("language", "de")}));
}

TEST(TranscriberTest, LanguageIsNotTrimmed) {
    EXPECT_EQ(fields(ServerFlavor::whispercpp, std::nullopt, " "),
              (FormFields{field("response_format", "json"), field("language", " ")}));
}

TEST(TranscriberTest, BodyOfOneFieldIsExactToTheByte) {
    const std::vector<std::uint8_t> wav{'W', 0, '\r', '\n', 0xff};
    const QByteArray expected =
        QByteArray(
            "--B\r\n"
            "Content-Disposition: form-data; name=\"response_format\"\r\n"
            "\r\n"
            "json\r\n"
            "--B\r\n"
            "Content-Disposition: form-data; name=\"file\"; filename=\"audio.wav\"\r\n"
            "Content-Type: audio/wav\r\n"
            "\r\n") +
        QByteArray("W\0\r\n\xff", 5) + "\r\n--B--\r\n";
    EXPECT_EQ(Transcriber::multipartBody("B", wav, {field("response_format", "json")}), expected);
}

TEST(TranscriberTest, FieldsComeInOrderBeforeTheFileInUtf8AndUnescaped) {
    const QByteArray body =
        Transcriber::multipartBody("B", {}, {field("a\"", "ü\r\n"), field("b", "2")});
    EXPECT_TRUE(
        body.startsWith("--B\r\nContent-Disposition: form-data; name=\"a\"\"\r\n\r\nü\r\n\r\n"
                        "--B\r\nContent-Disposition: form-data; name=\"b\"\r\n\r\n2\r\n"
                        "--B\r\nContent-Disposition: form-data; name=\"file\""));
}

TEST(TranscriberTest, BodyWithoutFieldsAndSoundIsWellFormed) {
    EXPECT_EQ(Transcriber::multipartBody("B", {}, {}),
              "--B\r\n"
              "Content-Disposition: form-data; name=\"file\"; filename=\"audio.wav\"\r\n"
              "Content-Type: audio/wav\r\n\r\n\r\n--B--\r\n");
}

TEST(TranscriberTest, TextMemberIsReturnedExactly) {
    EXPECT_EQ(Transcriber::parseTextField(R"({"x": 1, "text": " a\n b "})"),
              QStringLiteral(" a\n b "));
    EXPECT_EQ(Transcriber::parseTextField(R"({"text": ""})"), QString());
}

TEST(TranscriberTest, AnyOtherBodyHasNoTextMember) {
    for (const char* body :
         {"", "hello", "{}", "[\"text\"]", R"({"text": 5})", R"({"text": null})",
          R"({"Text": "a"})", R"({"text": "a")", R"("text")", R"({"text": "a"} x)"}) {
        EXPECT_EQ(Transcriber::parseTextField(body), std::nullopt) << body;
    }
}

TEST(TranscriberTest, NonSpeechMarkersAreRemoved) {
    EXPECT_EQ(cleaned(" [BLANK_AUDIO] "), QString());
    EXPECT_EQ(cleaned("hello [MUSIC] there"), QStringLiteral("hello there"));
    EXPECT_EQ(cleaned("a[X Y_Z]b[ ]c"), QStringLiteral("abc"));
    EXPECT_EQ(cleaned("[[A]]"), QStringLiteral("[]"));
}

TEST(TranscriberTest, OtherBracketsAreKept) {
    for (const char* text : {"[Music]", "[music]", "[]", "[A1]", "[A-B]", "[Ä]", "(MUSIC)", "[A"}) {
        EXPECT_EQ(cleaned(text), QString::fromUtf8(text));
    }
}

TEST(TranscriberTest, MarkerMayNotSpanLines) {
    EXPECT_EQ(cleaned("[A\nB]"), QStringLiteral("[A B]"));
}

TEST(TranscriberTest, WhiteSpaceIsFoldedAndTrimmed) {
    EXPECT_EQ(cleaned("Hello   world\n"), QStringLiteral("Hello world"));
    EXPECT_EQ(cleaned("\r\n a\t\v\f b \n"), QStringLiteral("a b"));
    EXPECT_EQ(cleaned(""), QString());
    EXPECT_EQ(cleaned(" \n "), QString());
}

TEST(TranscriberTest, EveryWhiteSpaceOfUnicodeIsFolded) {
    // The White_Space property of the Unicode character database.
    QString spaces = QStringLiteral(
        "\t\n\v\f\r \u0085\u00a0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008"
        "\u2009\u200a\u2028\u2029\u202f\u205f\u3000");
    for (const QChar space : spaces) {
        const QString text = QStringLiteral("a") + space + space + u'b' + space;
        EXPECT_EQ(Transcriber::clean(text), QStringLiteral("a b")) << int{space.unicode()};
    }
    EXPECT_EQ(Transcriber::clean(spaces), QString());
}

TEST(TranscriberTest, ZeroWidthCharactersAreNoWhiteSpace) {
    const QString text = QStringLiteral("a\u200bb\u200dc\ufeffd");
    EXPECT_EQ(Transcriber::clean(text), text);
}

TEST(TranscriberTest, ControlCharactersAreRemoved) {
    for (char16_t code = 0; code < 0x20; ++code) {
        EXPECT_EQ(harmless(QStringLiteral("a") + QChar(code) + u'b'), QStringLiteral("ab"))
            << int{code};
    }
    for (char16_t code = 0x7f; code < 0xa0; ++code) {
        EXPECT_EQ(harmless(QStringLiteral("a") + QChar(code) + u'b'), QStringLiteral("ab"))
            << int{code};
    }
}

TEST(TranscriberTest, EscapeSequencesLoseTheirEscape) {
    EXPECT_EQ(harmless(QStringLiteral("a\x1b[31mb")), QStringLiteral("a[31mb"));
}

TEST(TranscriberTest, BidirectionalOverridesAreRemoved) {
    EXPECT_EQ(harmless(QStringLiteral("\u202aa\u202bb\u202cc\u202dd\u202ee")),
              QStringLiteral("abcde"));
    EXPECT_EQ(harmless(QStringLiteral("\u2066a\u2067b\u2068c\u2069")), QStringLiteral("abc"));
}

TEST(TranscriberTest, RightToLeftTextKeepsItsMarks) {
    const QString hebrew = QStringLiteral("\u05e9\u05dc\u05d5\u05dd!\u200f ok\u200e \u061c");
    EXPECT_EQ(harmless(hebrew), hebrew);
}

TEST(TranscriberTest, ANameLosesItsMarksOfNoWidthAndKeepsItsJoiners) {
    EXPECT_EQ(Transcriber::plainLine(QStringLiteral("B\u200bo\u2060x\u200e\u200f\ufeff \u061c 2")),
              QStringLiteral("Box 2"));
    for (const QString& text : {QStringLiteral("\u0645\u06cc\u200c\u062e\u0648\u0627\u0647\u0645"),
                                QStringLiteral("👩‍👩‍👧 e\u0301 ❤️")})
        EXPECT_EQ(Transcriber::plainLine(text), text);
}

TEST(TranscriberTest, ANameOfWhichNothingShowsIsEmpty) {
    for (const QString& text : {QString(), QStringLiteral("\x01\x02"), QStringLiteral("\u200b"),
                                QStringLiteral("\u200e\u200f"), QStringLiteral("\u200d \u200c"),
                                QStringLiteral("\u061c\u2060\ufeff"), QStringLiteral("\u3164"),
                                QStringLiteral("\u2800 \ufe0f"), QStringLiteral("\U000e0041")})
        EXPECT_EQ(Transcriber::plainLine(text), QString()) << text.toUtf8().toHex().constData();
}

TEST(TranscriberTest, CharactersOfEveryPlaneAreKept) {
    const QString text = QStringLiteral("äß 日本語 👩‍👩‍👧 e\u0301");
    EXPECT_EQ(harmless(text), text);
}

TEST(TranscriberTest, NoDoubleSpaceIsLeftBehind) {
    EXPECT_EQ(harmless(QStringLiteral("\u202e a \x07 b \u202c")), QStringLiteral("a b"));
}

}  // namespace
}  // namespace quietlark
