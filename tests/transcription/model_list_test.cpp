#include "transcription/model_list.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace quietlark {
namespace {

/// The model picked from a list whose "data" holds `models`.
std::optional<QString> picked(const QByteArray& models) {
    const auto document = QJsonDocument::fromJson("{\"data\": [" + models + "]}");
    EXPECT_TRUE(document.isObject()) << models.toStdString();
    return pickModel(document.object());
}

TEST(ModelListTest, SpeechLabelWins) {
    EXPECT_EQ(picked(R"({"id": "chat"}, {"id": "ears", "labels": ["audio"]})"),
              QStringLiteral("ears"));
    EXPECT_EQ(picked(R"({"id": "ears", "labels": [5, "x", "TRANSCRIPTION"]})"),
              QStringLiteral("ears"));
}

TEST(ModelListTest, NameWithWhisperIsEnoughWhateverItsCase) {
    EXPECT_EQ(picked(R"({"id": "chat"}, {"id": "My-WHISPER-1"})"), QStringLiteral("My-WHISPER-1"));
}

TEST(ModelListTest, LabelOutweighsNameAndBothTogetherOutweighLabel) {
    EXPECT_EQ(picked(R"({"id": "whisper"}, {"id": "a", "labels": ["audio"]})"),
              QStringLiteral("a"));
    EXPECT_EQ(picked(R"({"id": "a", "labels": ["audio"]},
                        {"id": "whisper", "labels": ["audio"]})"),
              QStringLiteral("whisper"));
}

TEST(ModelListTest, SuggestionDecidesAmongEquals) {
    EXPECT_EQ(picked(R"({"id": "whisper-a"}, {"id": "whisper-b", "suggested": true})"),
              QStringLiteral("whisper-b"));
}

TEST(ModelListTest, SuggestionDoesNotOutweighNameOrLabel) {
    EXPECT_EQ(picked(R"({"id": "a", "suggested": true}, {"id": "whisper"})"),
              QStringLiteral("whisper"));
    EXPECT_EQ(picked(R"({"id": "whisper", "suggested": true}, {"id": "a", "labels": ["audio"]})"),
              QStringLiteral("a"));
    EXPECT_EQ(picked(R"({"id": "a", "labels": ["audio"], "suggested": true},
                        {"id": "whisper", "labels": ["audio"]})"),
              QStringLiteral("whisper"));
}

TEST(ModelListTest, FirstOfTwoThatScoreTwelveWins) {
    EXPECT_EQ(picked(R"({"id": "a", "labels": ["audio"], "suggested": true},
                        {"id": "b", "labels": ["transcription"], "suggested": true})"),
              QStringLiteral("a"));
}

TEST(ModelListTest, SuggestionAloneIsEnough) {
    EXPECT_EQ(picked(R"({"id": "a"}, {"id": "b", "suggested": true})"), QStringLiteral("b"));
}

TEST(ModelListTest, OnlyTheBooleanTrueSuggests) {
    EXPECT_EQ(picked(R"({"id": "a", "suggested": 1})"), std::nullopt);
    EXPECT_EQ(picked(R"({"id": "a", "suggested": "true"})"), std::nullopt);
}

TEST(ModelListTest, ModelThatNothingSpeaksForIsNotPicked) {
    EXPECT_EQ(picked(R"({"id": "chat", "labels": ["text", "audiovisual"]})"), std::nullopt);
    EXPECT_EQ(picked(""), std::nullopt);
}

TEST(ModelListTest, ModelWithoutANameIsPickedWithAnEmptyOne) {
    EXPECT_EQ(picked(R"({"labels": ["audio"]})"), QString());
    EXPECT_EQ(picked(R"({"id": 7, "labels": ["audio"]})"), QString());
}

TEST(ModelListTest, EntriesThatAreNoObjectsAreSkipped) {
    EXPECT_EQ(picked(R"(null, 5, "whisper", ["whisper"], {"id": "whisper"})"),
              QStringLiteral("whisper"));
}

TEST(ModelListTest, WhatIsNoModelListHasNoModel) {
    EXPECT_EQ(pickModel(QJsonArray{QJsonObject{{QStringLiteral("id"), QStringLiteral("whisper")}}}),
              std::nullopt);
    EXPECT_EQ(pickModel(QJsonObject()), std::nullopt);
    EXPECT_EQ(pickModel(QJsonObject{{QStringLiteral("data"), QStringLiteral("whisper")}}),
              std::nullopt);
}

}  // namespace
}  // namespace quietlark
