#include "program/wording.h"

#include <algorithm>

#include <QCoreApplication>
#include <QDirIterator>
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

const QRegularExpression& otherSystem() {
    static const QRegularExpression words(QStringLiteral(
        "\\bmacOS\\b|\\bMacs?\\b|\\bmenu bar\\b|\\bSystem Settings\\b|\\bLogin Items\\b|"
        "\\bApplications\\b|\\bFinder\\b|\\bDock\\b|\\bBonjour\\b|\\bOpt\\b|\\bCmd\\b|"
        "\\bCommand-|\\bOption-|[⌘⌥⌃⇧⎋⏎⇥⌫]"));
    return words;
}

/// Every literal in the source, comments left out. Those that follow each other are separate.
QStringList allLiterals() {
    static const QRegularExpression literal(QStringLiteral("\"((?:[^\"\\\\]|\\\\.)*)\""));
    QStringList literals;
    QDirIterator files(QStringLiteral(SOURCE_FOLDER),
                       {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (!file.open(QIODevice::ReadOnly)) continue;
        for (const QString& line : QString::fromUtf8(file.readAll()).split(u'\n')) {
            if (line.trimmed().startsWith(QStringLiteral("//"))) continue;
            for (auto found = literal.globalMatch(line); found.hasNext();)
                literals << found.next().captured(1).replace(QStringLiteral("\\n"),
                                                             QStringLiteral("\n"));
        }
    }
    return literals;
}

TEST(WordingTest, NoTextSpeaksOfAnotherSystem) {
    useWordingOfThisSystem(*QCoreApplication::instance());
    const auto texts = allTexts();
    EXPECT_GT(texts.size(), 100u);
    for (const Text& text : texts) {
        const QString shown = QCoreApplication::translate(text.context, text.source, text.use);
        EXPECT_FALSE(otherSystem().match(shown).hasMatch())
            << text.context.constData() << ": " << shown.toStdString();
    }
}

TEST(WordingTest, WhatSpeaksOfAnotherSystemCanBeWordedForThisOne) {
    const auto texts = allTexts();
    const QStringList literals = allLiterals();
    EXPECT_GT(literals.size(), 500);
    for (const QString& literal : literals) {
        if (!otherSystem().match(literal).hasMatch()) continue;
        EXPECT_TRUE(std::ranges::any_of(texts,
                                        [&literal](const Text& text) {
                                            return QString::fromUtf8(text.source).contains(literal);
                                        }))
            << "not within tr(): " << literal.toStdString();
    }
}

TEST(WordingTest, TheWordsOfThisSystemAreInForce) {
    useWordingOfThisSystem(*QCoreApplication::instance());
    EXPECT_EQ(QCoreApplication::translate("HotkeyDisplay", "⌘", "joined"), QStringLiteral("Super"));
}

TEST(WordingTest, ACountOfServersIsWordedWithItsNumber) {
    useWordingOfThisSystem(*QCoreApplication::instance());
    EXPECT_EQ(QCoreApplication::translate("ServerCopy", "%n servers, all slower than this Mac.",
                                          nullptr, 12),
              QStringLiteral("12 servers, all slower than this computer."));
}

}  // namespace
}  // namespace quietlark
