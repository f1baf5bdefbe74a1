#pragma once

#include <functional>
#include <map>
#include <utility>

#include <QStringList>

#include "platform/privacy_records.h"

namespace quietlark {

/// A system that keeps the records that the test says, and an administrator who answers when the
/// test says so.
class FakePrivacyRecords final : public PrivacyRecords {
public:
    /// The names that the system has for the services it keeps records of.
    std::map<PrivacyService, QString> services;

    [[nodiscard]] std::optional<QString> resetCommand(PrivacyService service,
                                                      const QString& identifier) const override {
        const auto found = services.find(service);
        if (found == services.end()) return std::nullopt;
        return QStringLiteral("reset %1 %2").arg(found->second, identifier);
    }

    [[nodiscard]] Cancellable runAsAdministrator(const QString& line,
                                                 std::function<void()> onDone) override {
        m_lines << line;
        m_onDone = std::move(onDone);
        return Cancellable([this] { m_onDone = nullptr; });
    }

    /// What the administrator has been asked to run, in order.
    [[nodiscard]] const QStringList& lines() const { return m_lines; }

    /// The line has run to its end, or the administrator has declined.
    void finish() {
        if (const auto onDone = std::exchange(m_onDone, nullptr)) onDone();
    }

private:
    QStringList m_lines;
    std::function<void()> m_onDone;
};

}  // namespace quietlark
