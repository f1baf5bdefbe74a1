#pragma once

#include <optional>

#include <QJsonValue>
#include <QString>

namespace quietlark {

/// Chooses the model for speech from an OpenAI-compatible model list: an object whose array "data"
/// holds the models. A label "audio" or "transcription", "whisper" in the name and a suggestion by
/// the server speak for a model, in this order of weight; the earliest of equals wins. Absent when
/// nothing speaks for any of them, or this is no model list.
[[nodiscard]] std::optional<QString> pickModel(const QJsonValue& modelList);

}  // namespace quietlark
