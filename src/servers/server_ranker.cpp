#include "servers/server_ranker.h"

#include "servers/hardware_profile.h"

namespace quietlark {

namespace {

using Entry = MDNSBrowser::Entry;

/// The earliest of those that say they are fastest; null when none says.
const Entry* fastest(const std::vector<Entry>& entries) {
    const Entry* best = nullptr;
    for (const Entry& entry : entries) {
        if (entry.rtf && (!best || *entry.rtf > *best->rtf)) best = &entry;
    }
    return best;
}

}  // namespace

ServerRanker::ServerRanker(const HardwareProfile& hardware) : m_hardware(hardware) {}

ServerRecommendation ServerRanker::rank(const std::vector<Entry>& remotes) const {
    const LocalCandidate candidate = local();
    if (remotes.empty()) return RecommendLocal{candidate};
    const Entry* const best = fastest(remotes);
    if (!candidate.estimatedRTF || !best) return ShowList{candidate, remotes};
    if (*candidate.estimatedRTF < *best->rtf) return RecommendRemote{*best};
    return RecommendLocal{candidate};
}

std::optional<SpeedHint> ServerRanker::speedHint(const Entry& entry) const {
    const auto own = local().estimatedRTF;
    if (!entry.rtf || !own || !(*own > 0)) return std::nullopt;
    const double ratio = *entry.rtf / *own;
    if (ratio >= fasterFrom) return SpeedHint::faster;
    if (ratio <= slowerUpTo) return SpeedHint::slower;
    return std::nullopt;
}

LocalCandidate ServerRanker::local() const {
    const auto& variant = m_hardware.appleSiliconVariant();
    if (!variant) return {};
    return {variant->displayName(), variant->estimatedRTF()};
}

}  // namespace quietlark
