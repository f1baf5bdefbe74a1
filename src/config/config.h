#pragma once

#include <cstdint>
#include <optional>

#include <QByteArray>
#include <QString>
#include <tl/expected.hpp>

#include "config/server_mode.h"

namespace quietlark {

/// Why the settings could not be saved.
struct SaveError {
    QString description;  ///< one sentence for the user
};

/// Everything the user has set, kept in one JSON file. A plain value: storing a changed copy
/// somewhere does not write the file.
struct Config {
    ServerMode serverMode;                              ///< where transcription happens
    QString hotkey = QStringLiteral("ctrl+alt+space");  ///< hold to talk
    QString toggleHotkey;                               ///< press to start and stop; empty: none
    QString language;                                   ///< told to the server; empty: not told
    bool launchAtLogin = false;
    bool onboardingComplete = false;
    std::int64_t onboardingStep = 0;  ///< index of the step to resume at

    bool operator==(const Config&) const = default;

    /// Path of the user's own file, found once for the life of the process.
    [[nodiscard]] static const QString& defaultFileURL();

    /// Reads a file. Whatever is wrong with it, the answer is then the default record as a whole.
    /// Never writes.
    [[nodiscard]] static Config load(const QString& path);

    /// Whether there is something at `path` that load() cannot make settings of.
    [[nodiscard]] static bool isDamaged(const QString& path);

    /// All or nothing: absent unless every member is there and of its type.
    [[nodiscard]] static std::optional<Config> fromJson(const QByteArray& json);

    /// Indented, keys sorted.
    [[nodiscard]] QByteArray toJson() const;

    /// Writes a file, creating its directory. What stood there before is replaced as a whole or
    /// stays as it was.
    [[nodiscard]] tl::expected<void, SaveError> save(const QString& path) const;
};

}  // namespace quietlark
