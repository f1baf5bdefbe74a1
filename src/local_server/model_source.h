#pragma once

#include <chrono>
#include <optional>

#include <QByteArray>
#include <QProcessEnvironment>
#include <QUrl>

namespace quietlark {

/// Where the model comes from, what is known of it, and how long bringing it may take.
struct ModelSource {
    QUrl url;
    std::optional<QByteArray> sha256;   ///< 64 lower-case hexadecimal digits
    std::optional<qint64> lengthBytes;  ///< of the whole model

    std::chrono::milliseconds idleTimeout = std::chrono::seconds(60);  ///< without a byte moving
    std::chrono::milliseconds totalTimeout = std::chrono::hours(2);    ///< for one attempt

    /// The published model, from the address that was set at build time, held to its published
    /// length and digest. QUIETLARK_MODEL_URL in the environment names another, of which nothing is
    /// known but the digest in QUIETLARK_MODEL_SHA256, when that is set.
    [[nodiscard]] static ModelSource configured(const QProcessEnvironment& environment);

    /// The absolute address as it is shown and stored: without a password.
    [[nodiscard]] QString address() const;

    /// A sentence about what somebody has set wrongly, if so.
    [[nodiscard]] std::optional<QString> mistake() const;
};

}  // namespace quietlark
