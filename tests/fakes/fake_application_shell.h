#pragma once

#include <utility>
#include <vector>

#include "app/application_shell.h"

namespace quietlark {

/// A desktop that notes down how the application wants to appear on it.
class FakeApplicationShell final : public ApplicationShell {
public:
    [[nodiscard]] ActivationPolicy activationPolicy() const override { return m_policy; }
    void setActivationPolicy(ActivationPolicy policy) override {
        m_policy = policy;
        ++m_policyChanges;
    }
    void activateIgnoringOtherApps() override { ++m_activations; }
    void show(const Alert& alert, std::function<void()> onClosed) override {
        m_alerts.push_back(alert);
        m_onClosed = std::move(onClosed);
    }
    void ask(const Confirmation& question, std::function<void(bool)> onAnswer) override {
        m_questions.push_back(question);
        m_onAnswer = std::move(onAnswer);
    }

    /// The user has read the last alert.
    void closeAlert() {
        if (const auto onClosed = std::exchange(m_onClosed, nullptr)) onClosed();
    }
    /// The user answers the last question.
    void answer(bool confirmed) {
        if (const auto onAnswer = std::exchange(m_onAnswer, nullptr)) onAnswer(confirmed);
    }
    void terminate() override { m_isTerminated = true; }

    [[nodiscard]] int policyChanges() const { return m_policyChanges; }
    [[nodiscard]] int activations() const { return m_activations; }
    [[nodiscard]] const std::vector<Alert>& alerts() const { return m_alerts; }
    [[nodiscard]] const std::vector<Confirmation>& questions() const { return m_questions; }
    [[nodiscard]] bool isTerminated() const { return m_isTerminated; }

private:
    ActivationPolicy m_policy = ActivationPolicy::accessory;
    int m_policyChanges = 0;
    int m_activations = 0;
    std::vector<Alert> m_alerts;
    std::vector<Confirmation> m_questions;
    std::function<void()> m_onClosed;
    std::function<void(bool)> m_onAnswer;
    bool m_isTerminated = false;
};

}  // namespace quietlark
