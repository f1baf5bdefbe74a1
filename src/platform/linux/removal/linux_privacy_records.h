#pragma once

#include <QString>

#include "platform/privacy_records.h"

namespace quietlark {

/// Linux keeps no record of what the user has allowed a program: what the session can do, every
/// program in it can. Nothing is there to be reset, so no administrator is ever asked for it.
class LinuxPrivacyRecords final : public PrivacyRecords {
public:
    /// `asker` starts a program as the administrator, once the session has asked for a password.
    explicit LinuxPrivacyRecords(QString asker = QStringLiteral("pkexec"));

    [[nodiscard]] std::optional<QString> resetCommand(PrivacyService service,
                                                      const QString& identifier) const override;
    [[nodiscard]] Cancellable runAsAdministrator(const QString& line,
                                                 std::function<void()> onDone) override;

private:
    const QString m_asker;
};

}  // namespace quietlark
