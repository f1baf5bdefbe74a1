#include "transcription/model_list.h"

#include <QJsonArray>
#include <QJsonObject>

namespace quietlark {

namespace {

constexpr int speechLabelScore = 10;
constexpr int whisperNameScore = 5;
constexpr int suggestedScore = 2;

bool hasSpeechLabel(const QJsonArray& labels) {
    for (const QJsonValue& label : labels) {
        const QString name = label.toString().toLower();
        if (name == QLatin1String("audio") || name == QLatin1String("transcription")) return true;
    }
    return false;
}

int score(const QJsonObject& model) {
    int score =
        hasSpeechLabel(model.value(QLatin1String("labels")).toArray()) ? speechLabelScore : 0;
    const QString id = model.value(QLatin1String("id")).toString().toLower();
    if (id.contains(QLatin1String("whisper"))) score |= whisperNameScore;
    if (model.value(QLatin1String("suggested")).toBool()) score += suggestedScore;
    return score;
}

}  // namespace

std::optional<QString> pickModel(const QJsonValue& modelList) {
    std::optional<QString> best;
    int bestScore = 0;
    const QJsonArray models = modelList.toObject().value(QLatin1String("data")).toArray();
    for (const QJsonValue& entry : models) {
        if (!entry.isObject()) continue;
        const QJsonObject model = entry.toObject();
        const int modelScore = score(model);
        if (modelScore <= bestScore) continue;
        bestScore = modelScore;
        best = model.value(QLatin1String("id")).toString();
    }
    return best;
}

}  // namespace quietlark
