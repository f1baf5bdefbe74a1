#include "screens/done_step_texts.h"

#include <algorithm>

#include <QCoreApplication>

#include "hotkeys/hotkey_display.h"
#include "picker/network_text.h"
#include "servers/server_ranker.h"

namespace quietlark {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(DoneStepTexts)
};

/// What is not above nothing has not been measured.
bool isSlow(std::optional<double> rtf) {
    return rtf && *rtf > 0 && *rtf < slowThreshold;
}

/// How long transcribing takes, such as "2.0x" as long as the recording.
QString lengthMultiple(double rtf) {
    return QString::number(1 / rtf, 'f', 1) + u'x';
}

}  // namespace

QString invocationHint(const Config& config) {
    const QString hold = config.hotkey.trimmed();
    if (!hold.isEmpty()) return Texts::tr("hold %1").arg(HotkeyDisplay::displayJoined(hold));
    const QString toggle = config.toggleHotkey.trimmed();
    if (!toggle.isEmpty()) return Texts::tr("press %1").arg(HotkeyDisplay::displayJoined(toggle));
    return Texts::tr("press your hotkey");
}

std::optional<QString> slowLocalNote(std::optional<double> measuredRTF) {
    if (!isSlow(measuredRTF)) return std::nullopt;
    return Texts::tr(
               "Your machine takes about %1 the audio length to transcribe. You can switch "
               "to a faster server later in Preferences.")
        .arg(lengthMultiple(*measuredRTF));
}

std::optional<QString> slowRemoteNote(const QString& instance,
                                      const std::vector<MDNSBrowser::Entry>& remotes,
                                      const HardwareProfile& hardware) {
    const auto server = std::ranges::find(remotes, instance, &MDNSBrowser::Entry::name);
    if (server == remotes.end() || !isSlow(server->rtf)) return std::nullopt;
    const auto& variant = hardware.appleSiliconVariant();
    const auto own = variant ? variant->estimatedRTF() : std::nullopt;
    if (!own || !(*own > ServerRanker::fasterFrom * *server->rtf)) return std::nullopt;
    return Texts::tr(
               "%1 takes about %2 the audio length to transcribe. You can switch to this Mac "
               "later in Preferences.")
        .arg(shownServerName(server->name, server->host, server->port),
             lengthMultiple(*server->rtf));
}

}  // namespace quietlark
