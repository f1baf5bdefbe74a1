#pragma once

#include <optional>
#include <variant>
#include <vector>

#include <QString>

#include "servers/mdns_browser.h"

namespace quietlark {

/// What is known of this computer as a transcription server.
struct LocalCandidate {
    std::optional<QString> cpu;          ///< its chip's name; absent if not recognised
    std::optional<double> estimatedRTF;  ///< seconds of audio per second; absent if unknown

    bool operator==(const LocalCandidate&) const = default;
};

/// Transcribe on this computer.
struct RecommendLocal {
    LocalCandidate local;

    bool operator==(const RecommendLocal&) const = default;
};

/// Use this server.
struct RecommendRemote {
    MDNSBrowser::Entry remote;

    bool operator==(const RecommendRemote&) const = default;
};

/// The servers cannot be compared with this computer: show them all.
struct ShowList {
    LocalCandidate local;
    std::vector<MDNSBrowser::Entry> remotes;

    bool operator==(const ShowList&) const = default;
};

using ServerRecommendation = std::variant<RecommendLocal, RecommendRemote, ShowList>;

}  // namespace quietlark
