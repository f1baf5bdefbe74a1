#include "server/whisper_model.h"

#include <fstream>

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "server/whisper_languages.h"

namespace quietlark {

TEST(WhisperModelTest, TheModelIsWhereTheApplicationPutsIt) {
    EXPECT_EQ(usualModelFile("/data", "/home/me"), "/data/Quietlark/models/active.bin");
    EXPECT_EQ(usualModelFile("", "/home/me"), "/home/me/.local/share/Quietlark/models/active.bin");
    EXPECT_EQ(usualModelFile("data", "/home/me"), usualModelFile("", "/home/me"));
    EXPECT_EQ(usualModelFile("", ""), "");
}

TEST(WhisperModelTest, ItIsCalledAfterItsFile) {
    EXPECT_EQ(whisperModelId("/models/ggml-base.en.bin"), "whisper-base.en");
    EXPECT_EQ(whisperModelId("tiny"), "whisper-tiny");
}

TEST(WhisperModelTest, ThePublishedNameBesideTheFileIsBetter) {
    const QTemporaryDir folder;
    const std::string file = folder.filePath(QStringLiteral("active.bin")).toStdString();
    EXPECT_EQ(whisperModelId(file), "whisper-active");
    std::ofstream(file + ".name") << "ggml-large-v3-turbo.bin\n";
    EXPECT_EQ(whisperModelId(file), "whisper-large-v3-turbo");
}

TEST(WhisperModelTest, ItsVocabularyTellsItsLanguages) {
    const QTemporaryDir folder;
    const std::string file = folder.filePath(QStringLiteral("model.bin")).toStdString();
    const auto languages = [&](std::string_view head) {
        std::ofstream(file, std::ios::binary) << head << "and so on";
        return languagesOf(file);
    };
    EXPECT_EQ(languages({"lmgg\x98\xca\0\0", 8}), ModelLanguages::English);
    EXPECT_EQ(languages({"lmgg\x99\xca\0\0", 8}), ModelLanguages::AllButCantonese);
    EXPECT_EQ(languages({"lmgg\x9a\xca\0\0", 8}), ModelLanguages::All);
    EXPECT_EQ(languages({"gguf\x98\xca\0\0", 8}), ModelLanguages::All);
    EXPECT_EQ(languagesOf("/nowhere"), ModelLanguages::All);
}

TEST(WhisperLanguagesTest, LanguagesAreKnownByTheirCodesAndNames) {
    EXPECT_EQ(whisperLanguage(""), "auto");
    EXPECT_EQ(whisperLanguage("auto"), "auto");
    EXPECT_EQ(whisperLanguage("DE"), "de");
    EXPECT_EQ(whisperLanguage("pt-BR"), "pt");
    EXPECT_EQ(whisperLanguage("zh_CN"), "zh");
    EXPECT_EQ(whisperLanguage("yue"), "yue");
    EXPECT_EQ(whisperLanguage("german"), "de");
    EXPECT_EQ(whisperLanguage("English"), "en");
    EXPECT_EQ(whisperLanguage("Haitian Creole"), "ht");
    for (const char* name : {"xx", "e", "engl", "-", "en ", "\xff"})
        EXPECT_FALSE(whisperLanguage(name)) << name;
}

}  // namespace quietlark
