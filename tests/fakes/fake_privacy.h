#pragma once

#include <set>
#include <utility>
#include <vector>

#include "platform/privacy.h"

namespace quietlark {

/// A system whose user answers as the test says; nothing is granted at first. A question about the
/// microphone stays open until answerMicrophone().
class FakePrivacy final : public Privacy {
public:
    [[nodiscard]] std::optional<Unavailable> missing(PrivacyGrant grant) const override {
        if (m_granted.contains(grant)) return std::nullopt;
        return Unavailable{reasonFor(grant)};
    }

    void requestMicrophone(std::function<void(bool granted)> completion) override {
        m_requests.push_back(PrivacyGrant::Microphone);
        m_microphoneCompletions.push_back(std::move(completion));
    }

    bool requestInputMonitoring() override { return request(PrivacyGrant::InputMonitoring); }
    bool requestAccessibility() override { return request(PrivacyGrant::Accessibility); }

    void grant(PrivacyGrant grant) { m_granted.insert(grant); }
    void revoke(PrivacyGrant grant) { m_granted.erase(grant); }

    /// The user answers all questions about the microphone, on the calling thread.
    void answerMicrophone(bool granted) {
        if (granted) grant(PrivacyGrant::Microphone);
        for (const auto& completion : std::exchange(m_microphoneCompletions, {}))
            completion(granted);
    }

    /// What the program asked for, in order.
    [[nodiscard]] const std::vector<PrivacyGrant>& requests() const { return m_requests; }

    /// The sentence for a grant that is missing.
    static QString reasonFor(PrivacyGrant grant) {
        switch (grant) {
            case PrivacyGrant::Microphone:
                return QStringLiteral("Plug in a microphone.");
            case PrivacyGrant::InputMonitoring:
                return QStringLiteral("Let keys be seen.");
            case PrivacyGrant::Accessibility:
                return QStringLiteral("Let keys be typed.");
        }
        return {};
    }

private:
    bool request(PrivacyGrant grant) {
        m_requests.push_back(grant);
        return m_granted.contains(grant);
    }

    std::set<PrivacyGrant> m_granted;
    std::vector<PrivacyGrant> m_requests;
    std::vector<std::function<void(bool)>> m_microphoneCompletions;
};

}  // namespace quietlark
