#include "config/config.h"

#include <limits>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace quietlark {
namespace {

/// A file with every member, none of them the default.
class ConfigTest : public testing::Test {
protected:
    void set(const char* key, const QJsonValue& value) { m_object[QLatin1String(key)] = value; }
    void remove(const char* key) { m_object.remove(QLatin1String(key)); }
    [[nodiscard]] std::optional<Config> decoded() const {
        return Config::fromJson(QJsonDocument(m_object).toJson());
    }
    /// The file with `text` in place of the step's number.
    [[nodiscard]] std::optional<Config> decodedWithStep(const QByteArray& text) const {
        QByteArray json = QJsonDocument(m_object).toJson(QJsonDocument::Compact);
        return Config::fromJson(json.replace("\"onboardingStep\":3", "\"onboardingStep\":" + text));
    }

    QJsonObject m_object{
        {QStringLiteral("serverMode"), QJsonObject{{QStringLiteral("local"), QJsonObject()}}},
        {QStringLiteral("hotkey"), QStringLiteral("cmd+f5")},
        {QStringLiteral("toggleHotkey"), QStringLiteral("fn")},
        {QStringLiteral("language"), QStringLiteral("de")},
        {QStringLiteral("launchAtLogin"), true},
        {QStringLiteral("onboardingComplete"), true},
        {QStringLiteral("onboardingStep"), 3},
    };
};

TEST_F(ConfigTest, DefaultRecordIsUnconfiguredWithAHoldHotkey) {
    const Config config;
    EXPECT_EQ(config.serverMode, ServerMode(Unconfigured{}));
    EXPECT_EQ(config.hotkey, QStringLiteral("ctrl+alt+space"));
    EXPECT_EQ(config.toggleHotkey, QString());
    EXPECT_EQ(config.language, QString());
    EXPECT_FALSE(config.launchAtLogin);
    EXPECT_FALSE(config.onboardingComplete);
    EXPECT_EQ(config.onboardingStep, 0);
}

TEST_F(ConfigTest, EveryMemberIsRead) {
    const Config expected{
        Local{}, QStringLiteral("cmd+f5"), QStringLiteral("fn"), QStringLiteral("de"), true, true,
        3};
    EXPECT_EQ(decoded(), expected);
}

TEST_F(ConfigTest, UnknownMembersAreIgnored) {
    set("theme", QStringLiteral("dark"));
    EXPECT_TRUE(decoded());
}

TEST_F(ConfigTest, EveryMemberIsRequired) {
    for (const QString& key : m_object.keys()) {
        const QJsonValue value = m_object.take(key);
        EXPECT_EQ(decoded(), std::nullopt) << key.toStdString();
        m_object[key] = value;
    }
}

TEST_F(ConfigTest, EveryMemberMustBeOfItsType) {
    for (const QString& key : m_object.keys()) {
        const QJsonValue value = m_object.take(key);
        for (const QJsonValue& wrong : {QJsonValue(QJsonValue::Null), QJsonValue(QJsonArray())}) {
            m_object[key] = wrong;
            EXPECT_EQ(decoded(), std::nullopt) << key.toStdString();
        }
        m_object[key] = value;
    }
}

TEST_F(ConfigTest, NumberIsNoBoolean) {
    set("launchAtLogin", 1);
    EXPECT_EQ(decoded(), std::nullopt);
}

TEST_F(ConfigTest, BooleanIsNoInteger) {
    EXPECT_EQ(decodedWithStep("true"), std::nullopt);
}

TEST_F(ConfigTest, NumberInQuotesIsNoInteger) {
    EXPECT_EQ(decodedWithStep("\"3\""), std::nullopt);
}

TEST_F(ConfigTest, FractionIsNoInteger) {
    EXPECT_EQ(decodedWithStep("1.5"), std::nullopt);
    EXPECT_EQ(decodedWithStep("0.5"), std::nullopt);
    EXPECT_EQ(decodedWithStep("1e-3"), std::nullopt);
}

TEST_F(ConfigTest, IntegersAreExactToTheEndsOf64Bits) {
    EXPECT_EQ(decodedWithStep("9223372036854775807")->onboardingStep,
              std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(decodedWithStep("-9223372036854775808")->onboardingStep,
              std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(decodedWithStep("9007199254740993")->onboardingStep, 9007199254740993);
}

TEST_F(ConfigTest, IntegerBeyond64BitsIsAMismatch) {
    EXPECT_EQ(decodedWithStep("9223372036854775808"), std::nullopt);
    EXPECT_EQ(decodedWithStep("-9223372036854779999"), std::nullopt);
    EXPECT_EQ(decodedWithStep("1e300"), std::nullopt);
}

TEST_F(ConfigTest, WholeNumberInAnotherNotationIsAnInteger) {
    EXPECT_EQ(decodedWithStep("3.0")->onboardingStep, 3);
    EXPECT_EQ(decodedWithStep("-0")->onboardingStep, 0);
    EXPECT_EQ(decodedWithStep("2e2")->onboardingStep, 200);
}

TEST_F(ConfigTest, UnreadableServerModeMakesTheWholeUnreadable) {
    set("serverMode", QJsonObject{{QStringLiteral("manualRemote"), QJsonObject()}});
    EXPECT_EQ(decoded(), std::nullopt);
}

TEST_F(ConfigTest, WhatIsNoJsonObjectIsUnreadable) {
    for (const char* json : {"", "[]", "null", "5", "{", "hotkey=x", "{\"hotkey\": \"x\",}"}) {
        EXPECT_EQ(Config::fromJson(json), std::nullopt) << json;
    }
}

TEST_F(ConfigTest, DeeplyNestedJsonIsUnreadable) {
    EXPECT_EQ(Config::fromJson(QByteArray(1000 * 1000, '[')), std::nullopt);
}

TEST_F(ConfigTest, WrittenFormIsIndentedWithSortedKeys) {
    const Config config{DiscoveredRemote{QStringLiteral("i"), QStringLiteral("h"), 8080},
                        QStringLiteral("k"),
                        {},
                        {},
                        true,
                        false,
                        std::numeric_limits<std::int64_t>::max()};
    EXPECT_EQ(config.toJson(), R"({
    "hotkey": "k",
    "language": "",
    "launchAtLogin": true,
    "onboardingComplete": false,
    "onboardingStep": 9223372036854775807,
    "serverMode": {
        "discoveredRemote": {
            "host": "h",
            "instance": "i",
            "port": 8080
        }
    },
    "toggleHotkey": ""
}
)");
}

TEST_F(ConfigTest, DefaultRecordIsWrittenWithAnEmptyUnconfigured) {
    const QJsonObject object = QJsonDocument::fromJson(Config().toJson()).object();
    const QJsonObject expected{{QStringLiteral("unconfigured"), QJsonObject()}};
    EXPECT_EQ(object.value(QLatin1String("serverMode")).toObject(), expected);
}

TEST_F(ConfigTest, WhatWasWrittenReadsBackEqual) {
    const Config config{ManualRemote{QStringLiteral("höst\n\"x\""), -1, QStringLiteral("")},
                        QStringLiteral("ctrl+ä"),
                        QStringLiteral("\u202e"),
                        QStringLiteral("日本"),
                        false,
                        true,
                        -5};
    EXPECT_EQ(Config::fromJson(config.toJson()), config);
}

TEST_F(ConfigTest, RecordsAreEqualOnlyIfAllFieldsAre) {
    const Config config;
    EXPECT_EQ(config, Config());
    Config other;
    other.language = QStringLiteral("de");
    EXPECT_NE(config, other);
    other = Config();
    other.onboardingStep = 1;
    EXPECT_NE(config, other);
}

TEST_F(ConfigTest, RecordsThatDifferOnlyInTheirServersPortAreUnequal) {
    Config config;
    config.serverMode = DiscoveredRemote{QStringLiteral("i"), QStringLiteral("h"), 1};
    Config other = config;
    EXPECT_EQ(config, other);
    other.serverMode = DiscoveredRemote{QStringLiteral("i"), QStringLiteral("h"), 2};
    EXPECT_NE(config, other);
}

}  // namespace
}  // namespace quietlark
