#pragma once

#include <QSettings>

#include "platform/user_defaults.h"

namespace quietlark {

/// User defaults in a small text file of their own, which is written at each change.
class SettingsUserDefaults final : public UserDefaults {
public:
    /// Path of the file; it and its directory are created when there is something to keep.
    explicit SettingsUserDefaults(const QString& path);

    [[nodiscard]] std::optional<QString> string(const QString& key) const override;
    void set(const QString& key, const QString& value) override;
    void remove(const QString& key) override;
    /// Removes the file; of a link, the link.
    void removeAll() override;

private:
    QSettings m_settings;
};

}  // namespace quietlark
