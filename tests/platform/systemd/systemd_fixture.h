#pragma once

#include <optional>

#include <gtest/gtest.h>

#include "peers/systemd_user.h"
#include "platform/linux/systemd/systemd_user_service.h"
#include "support/wait.h"

namespace quietlark {

inline const QString testUnit = QStringLiteral("net.quietlark.server.service");

/// A unit that a test can register, running `command`.
inline QString unitRunning(const QString& command) {
    return QStringLiteral(
               "[Service]\nType=exec\nExecStart=%1\n[Install]\nWantedBy=default.target\n")
        .arg(command);
}
inline const QString sleepingUnit = unitRunning(QStringLiteral("/bin/sleep infinity"));

/// Collects the answer to one request.
class ServiceAnswer {
public:
    using Result = tl::expected<void, ServiceError>;

    RegisteredService::Done remember() {
        return [this](const Result& result) { m_results.push_back(result); };
    }
    /// The result, once there is one.
    Result await() {
        if (!waitUntil([this] { return !m_results.empty(); }))
            return tl::unexpected(ServiceError{QStringLiteral("no answer")});
        return m_results.front();
    }
    [[nodiscard]] std::size_t count() const { return m_results.size(); }

private:
    std::vector<Result> m_results;
};

}  // namespace quietlark
