#pragma once

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
    void show(const Alert& alert) override { m_alerts.push_back(alert); }
    void terminate() override { m_isTerminated = true; }

    [[nodiscard]] int policyChanges() const { return m_policyChanges; }
    [[nodiscard]] int activations() const { return m_activations; }
    [[nodiscard]] const std::vector<Alert>& alerts() const { return m_alerts; }
    [[nodiscard]] bool isTerminated() const { return m_isTerminated; }

private:
    ActivationPolicy m_policy = ActivationPolicy::accessory;
    int m_policyChanges = 0;
    int m_activations = 0;
    std::vector<Alert> m_alerts;
    bool m_isTerminated = false;
};

}  // namespace quietlark
