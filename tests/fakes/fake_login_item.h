#pragma once

#include <optional>

#include <QStringList>

#include "platform/login_item.h"

namespace quietlark {

/// A login item in the state that the test wants.
class FakeLoginItem final : public LoginItem {
public:
    ServiceStatus current = ServiceStatus::notRegistered;

    /// From now on both requests fail with this sentence and change nothing.
    std::optional<ServiceError> failure;

    [[nodiscard]] ServiceStatus status() const override { return current; }

    [[nodiscard]] tl::expected<void, ServiceError> registerItem() override {
        m_requests << QStringLiteral("register");
        return change(ServiceStatus::enabled);
    }

    [[nodiscard]] tl::expected<void, ServiceError> unregisterItem() override {
        m_requests << QStringLiteral("unregister");
        return change(ServiceStatus::notRegistered);
    }

    void forget() override { m_wasForgotten = true; }
    [[nodiscard]] bool wasForgotten() const { return m_wasForgotten; }

    /// "register" and "unregister", in order.
    [[nodiscard]] const QStringList& requests() const { return m_requests; }

private:
    tl::expected<void, ServiceError> change(ServiceStatus wanted) {
        if (failure) return tl::unexpected(*failure);
        current = wanted;
        return {};
    }

    QStringList m_requests;
    bool m_wasForgotten = false;
};

}  // namespace quietlark
