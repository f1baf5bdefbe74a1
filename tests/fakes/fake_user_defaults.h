#pragma once

#include <map>

#include "platform/user_defaults.h"

namespace quietlark {

/// Remembers for as long as it lives.
class FakeUserDefaults final : public UserDefaults {
public:
    [[nodiscard]] std::optional<QString> string(const QString& key) const override {
        const auto found = m_values.find(key);
        if (found == m_values.end()) return std::nullopt;
        return found->second;
    }
    void set(const QString& key, const QString& value) override { m_values[key] = value; }
    void remove(const QString& key) override { m_values.erase(key); }
    void removeAll() override { m_values.clear(); }

private:
    std::map<QString, QString> m_values;
};

}  // namespace quietlark
