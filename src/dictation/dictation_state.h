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

}  // namespace quietlark

Q_DECLARE_METATYPE(quietlark::DictationState)
