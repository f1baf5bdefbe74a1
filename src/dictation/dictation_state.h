#pragma once

#include <QMetaType>
#include <QString>

namespace quietlark {

/// What dictation is doing, as the user sees it.
struct DictationState {
    enum class Case {
        error,         ///< the last attempt failed here or at the server
        unreachable,   ///< no server is configured, or it could not be reached
        idle,          ///< ready
        recording,     ///< the microphone is being recorded
        transcribing,  ///< the recording is being sent and transcribed
    };

    Case kind = Case::idle;
    QString message;  ///< one sentence for the user, in error and unreachable only

    static DictationState error(const QString& message) { return {Case::error, message}; }
    static DictationState unreachable(const QString& message) {
        return {Case::unreachable, message};
    }

    bool operator==(const DictationState&) const = default;
};

/// Such as "idle", for other programs.
[[nodiscard]] inline QString nameOf(DictationState::Case kind) {
    switch (kind) {
        case DictationState::Case::error:
            return QStringLiteral("error");
        case DictationState::Case::unreachable:
            return QStringLiteral("unreachable");
        case DictationState::Case::recording:
            return QStringLiteral("recording");
        case DictationState::Case::transcribing:
            return QStringLiteral("transcribing");
        case DictationState::Case::idle:
            break;
    }
    return QStringLiteral("idle");
}

}  // namespace quietlark

Q_DECLARE_METATYPE(quietlark::DictationState)
