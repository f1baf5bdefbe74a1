#include "app/status_symbol.h"

namespace quietlark {

namespace {

const QString warning = QStringLiteral("exclamationmark.triangle");
const QString modelMissing = QStringLiteral("arrow.down.circle");
const QString serverTrouble = QStringLiteral("exclamationmark.bubble");

QString startingFrame(std::int64_t animIdx) {
    constexpr std::int64_t framesPerPhase = 3;
    return animIdx / framesPerPhase % 2 == 0 ? QStringLiteral("ellipsis.circle")
                                             : QStringLiteral("ellipsis.circle.fill");
}

QString transcribingFrame(std::int64_t animIdx) {
    switch (animIdx % 3) {
        case 0:
            return QStringLiteral("waveform.path");
        case 1:
            return QStringLiteral("waveform");
        default:
            return QStringLiteral("waveform.path.ecg");
    }
}

QString dictationSymbol(DictationState::Case dictation, std::int64_t animIdx) {
    switch (dictation) {
        case DictationState::Case::error:
        case DictationState::Case::unreachable:
            return warning;
        case DictationState::Case::idle:
            return QStringLiteral("bubble.left");
        case DictationState::Case::recording:
            return QStringLiteral("bubble.left.fill");
        case DictationState::Case::transcribing:
            return transcribingFrame(animIdx);
    }
    return warning;
}

}  // namespace

QString symbolFor(const StatusFacts& facts) {
    // The onboarding asks for permissions itself.
    if (facts.onboardingComplete && !facts.allPermissionsGranted) return warning;
    if (facts.isLocal && !facts.modelIsInstalled) return modelMissing;
    if (facts.serverIsStarting) return startingFrame(facts.animIdx);
    if (facts.serverNeedsApproval || facts.serverIsStopped) return serverTrouble;
    return dictationSymbol(facts.dictation, facts.animIdx);
}

}  // namespace quietlark
