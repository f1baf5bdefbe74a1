#include "state/app_state.h"

#include "state/app_state_fixture.h"

namespace quietlark {
namespace {

class AppStateTest : public AppStateFixture {
protected:
    static Config withLanguage(const char* language) {
        Config config;
        config.language = QString::fromLatin1(language);
        return config;
    }

    Cancellable listen() {
        return state().subscribeToConfig(
            [this](const Config& config) { heard << config.language; });
    }

    QStringList heard;
};

TEST_F(AppStateTest, PartsAreMadeInTheirOrderAndDictationOnFirstUse) {
    state();
    EXPECT_EQ(made.join(u' '), QStringLiteral("discoveredServers daemon modelDownloader"));
    EXPECT_EQ(&state().dictation(), &state().dictation());
    EXPECT_EQ(made.mid(3), QStringList{QStringLiteral("dictation")});
}

TEST_F(AppStateTest, TheSettingsAreLoadedFromTheirFile) {
    saved(withLanguage("de"));
    EXPECT_EQ(state().config(), withLanguage("de"));
}

TEST_F(AppStateTest, WithoutAFileTheSettingsAreTheDefaults) {
    EXPECT_EQ(state().config(), Config());
}

TEST_F(AppStateTest, ASubscriberHearsThePresentSettingsAtOnce) {
    saved(withLanguage("de"));
    const auto subscription = listen();
    EXPECT_EQ(heard, QStringList{QStringLiteral("de")});
}

TEST_F(AppStateTest, ASubscriberHearsEverySettingEqualOnesToo) {
    const auto subscription = listen();
    state().setConfig(withLanguage("en"));
    state().setConfig(withLanguage("en"));
    EXPECT_EQ(heard, (QStringList{QString(), QStringLiteral("en"), QStringLiteral("en")}));
}

TEST_F(AppStateTest, AWithdrawnSubscriberHearsNothingMore) {
    auto subscription = listen();
    subscription.cancel();
    state().setConfig(withLanguage("en"));
    EXPECT_EQ(heard.size(), 1);
}

TEST_F(AppStateTest, TheNewSettingsAreInPlaceWhenASubscriberHearsOfThem) {
    QString inPlace;
    const auto subscription =
        state().subscribeToConfig([&](const Config&) { inPlace = state().config().language; });
    state().setConfig(withLanguage("en"));
    EXPECT_EQ(inPlace, QStringLiteral("en"));
}

TEST_F(AppStateTest, SettingTheSettingsSavesThem) {
    state().setConfig(withLanguage("en"));
    EXPECT_EQ(Config::load(files.config), withLanguage("en"));
}

TEST_F(AppStateTest, WhatASubscriberEditsIsWhatIsSaved) {
    const auto subscription = state().subscribeToConfig([this](const Config& config) {
        if (config.language == QStringLiteral("en")) state().setConfig(withLanguage("fr"));
    });
    state().setConfig(withLanguage("en"));
    EXPECT_EQ(Config::load(files.config), withLanguage("fr"));
}

TEST_F(AppStateTest, SettingsThatCannotBeSavedStillHold) {
    // A file where the directory should be.
    QFile obstacle(directory.filePath(QStringLiteral("Quietlark")));
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
    state().setConfig(withLanguage("en"));
    EXPECT_EQ(state().config(), withLanguage("en"));
}

class AppStateDictationTest : public AppStateTest {
protected:
    AppStateDictationTest() {
        saved(manualRemote());
        network.respondTo(QStringLiteral("http://box:8080/"), 200, "whisper.cpp: POST /inference");
        network.respondTo(QStringLiteral("http://box:8080/inference"), 200, "hello");
    }
};

TEST_F(AppStateDictationTest, DictationUsesTheSettingsOfTheMoment) {
    ASSERT_EQ(state().dictation().state().kind, Case::idle);
    state().setConfig(unconfigured());
    EXPECT_EQ(dictate(), 0u);
    EXPECT_EQ(state().dictation().state().kind, Case::unreachable);
}

TEST_F(AppStateDictationTest, ChoosingAnotherServerMakesDictationLookForItsServerAgain) {
    const auto firstTime = dictate();
    EXPECT_LT(dictate(), firstTime);
    state().setConfig(manualRemote(QStringLiteral("other")));
    state().setConfig(manualRemote());
    EXPECT_EQ(dictate(), firstTime);
}

TEST_F(AppStateDictationTest, AnotherSettingLeavesDictationItsServer) {
    const auto firstTime = dictate();
    Config config = manualRemote();
    config.language = QStringLiteral("de");
    state().setConfig(config);
    EXPECT_LT(dictate(), firstTime);
}

}  // namespace
}  // namespace quietlark
