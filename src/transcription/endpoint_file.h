#pragma once

#include <optional>

#include <QMap>
#include <QString>

namespace quietlark {

/// What the server on this computer says about itself: lines of key=value in a file that it writes
/// once it can transcribe and removes when it stops. Believed only when no other user can have
/// written it. Each call reads the file afresh. Any thread.
class EndpointFile {
public:
    explicit EndpointFile(QString path = defaultPath());

    /// "/tmp/quietlark.endpoint", unless the environment's QUIETLARK_ENDPOINT_FILE names another.
    [[nodiscard]] static QString defaultPath();

    /// The server's address, as host:port without a scheme.
    [[nodiscard]] std::optional<QString> read() const;

    /// The address as people should see it; the plain address where the file gives no other.
    [[nodiscard]] std::optional<QString> readDisplay() const;

    /// Seconds of sound that the server has been measured to transcribe in one second.
    [[nodiscard]] std::optional<double> readRTF() const;

    /// Whether there is a file that can be read, but that somebody else might have written.
    [[nodiscard]] bool isDistrusted() const;

    /// Whether a server must have written the file: it has the usual name, or it says nothing but
    /// what servers say. The environment may name any other file.
    [[nodiscard]] bool isServers() const;

    [[nodiscard]] const QString& path() const { return m_path; }

private:
    using Pairs = QMap<QString, QString>;

    [[nodiscard]] std::optional<Pairs> dict() const;
    [[nodiscard]] std::optional<QString> nonEmptyValue(const QString& key) const;

    QString m_path;
};

}  // namespace quietlark
