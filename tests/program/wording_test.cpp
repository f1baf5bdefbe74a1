#include "program/wording.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <gtest/gtest.h>

namespace quietlark {
namespace {

struct Text {
    QByteArray context;
    QByteArray source;
    QByteArray use;
};

/// Every text that the program can show, as Qt's own tool finds them in the source.
std::vector<Text> allTexts() {
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("all.ts"));
    QProcess::execute(
        QStringLiteral(LUPDATE),
        {QStringLiteral("-silent"), QStringLiteral("-extensions"), QStringLiteral("cpp,h"),
         QStringLiteral(SOURCE_FOLDER), QStringLiteral("-ts"), path});
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    QXmlStreamReader xml(&file);
    std::vector<Text> texts;
    Text text;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isEndElement() && xml.name() == u"message") texts.push_back(text);
        if (!xml.isStartElement()) continue;
        if (xml.name() == u"message") text = {text.context, {}, {}};
        if (xml.name() == u"name") text.context = xml.readElementText().toUtf8();
        if (xml.name() == u"source") text.source = xml.readElementText().toUtf8();
        if (xml.name() == u"comment") text.use = xml.readElementText().toUtf8();
    }
    return texts;
}

TEST(WordingTest, NoTextSpeaksOfAnotherSystem) {
    useWordingOfThisSystem(*QCoreApplication::instance());
    const QRegularExpression otherSystem(
        QStringLiteral("\\bmacOS\\b|\\bMac\\b|menu bar|System Settings|Applications|⌘|⌥|⌃|⎋"));
    const auto texts = allTexts();
    EXPECT_GT(texts.size(), 100u);
    for (const Text& text : texts) {
        const QString shown = QCoreApplication::translate(text.context, text.source, text.use);
        EXPECT_FALSE(otherSystem.match(shown).hasMatch())
            << text.context.constData() << ": " << shown.toStdString();
    }
}

TEST(WordingTest, TheWordsOfThisSystemAreInForce) {
    useWordingOfThisSystem(*QCoreApplication::instance());
    EXPECT_EQ(QCoreApplication::translate("HotkeyDisplay", "⌘", "joined"), QStringLiteral("Super"));
}

}  // namespace
}  // namespace quietlark
