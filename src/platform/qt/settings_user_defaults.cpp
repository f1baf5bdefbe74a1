#include "platform/qt/settings_user_defaults.h"

#include "platform/own_file.h"

namespace quietlark {

SettingsUserDefaults::SettingsUserDefaults(const QString& path)
    : m_settings(path, QSettings::IniFormat) {}

std::optional<QString> SettingsUserDefaults::string(const QString& key) const {
    if (!m_settings.contains(key)) return std::nullopt;
    return m_settings.value(key).toString();
}

void SettingsUserDefaults::set(const QString& key, const QString& value) {
    m_settings.setValue(key, value);
    m_settings.sync();
}

void SettingsUserDefaults::remove(const QString& key) {
    m_settings.remove(key);
    m_settings.sync();
}

void SettingsUserDefaults::removeAll() {
    // Writing an empty file would write to whatever a link leads to.
    static_cast<void>(removeOwnFile(m_settings.fileName()));
    m_settings.sync();
}

}  // namespace quietlark
