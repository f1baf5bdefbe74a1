#pragma once

#include <optional>

#include <QString>

namespace quietlark {

/// What the program remembers from run to run that is no setting of the user's. Main thread; a
/// value that cannot be stored is lost without a report.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    [[nodiscard]] virtual std::optional<QString> string(const QString& key) const = 0;
    virtual void set(const QString& key, const QString& value) = 0;

    /// Harmless where there is no such value.
    virtual void remove(const QString& key) = 0;

    /// Forgets everything.
    virtual void removeAll() = 0;
};

}  // namespace quietlark
