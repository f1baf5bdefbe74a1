#pragma once

#include <optional>

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

#include "platform/login_item.h"

namespace quietlark {

/// The application among the user's XDG autostart entries: no entry is notRegistered; one that is
/// hidden, or that the desktop's settings have switched off, is requiresApproval.
class AutostartEntry final : public LoginItem {
    Q_DECLARE_TR_FUNCTIONS(AutostartEntry)

public:
    /// The entry is `configDirectory`/autostart/net.quietlark.app.desktop, and starts `executable`,
    /// an absolute path.
    AutostartEntry(const QString& configDirectory, QString executable);

    [[nodiscard]] ServiceStatus status() const override;
    [[nodiscard]] tl::expected<void, ServiceError> registerItem() override;

    /// Removes the entry, and nothing else.
    [[nodiscard]] tl::expected<void, ServiceError> unregisterItem() override;

    /// An entry that starts another executable stays.
    void forget() override;

private:
    [[nodiscard]] std::optional<QByteArray> content() const;
    [[nodiscard]] tl::expected<void, ServiceError> failure(const QString& reason) const;

    const QString m_directory;
    const QString m_file;
    const QString m_executable;
};

}  // namespace quietlark
