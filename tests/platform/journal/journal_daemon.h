#pragma once

#include <optional>
#include <vector>

#include <QByteArray>
#include <QJsonObject>

#include "peers/child_process.h"

namespace quietlark {

/// Gives this process an empty /run of its own, where no journal listens; false when the kernel
/// does not let it, as it must be root.
[[nodiscard]] bool usePrivateRun();

/// A real systemd-journald of its own, which this process and its children log to and nobody else.
/// Needs usePrivateRun() first.
class JournalDaemon {
public:
    JournalDaemon();
    ~JournalDaemon();

    /// False when it did not come up.
    [[nodiscard]] bool isListening() const { return m_isListening; }

    /// The entries of one SYSLOG_IDENTIFIER so far, oldest first, as `journalctl -o json` has them.
    [[nodiscard]] std::vector<QJsonObject> entries(const QString& identifier) const;

    /// Stops it from reading until resume().
    void suspend() const;
    void resume() const;

private:
    std::optional<ChildProcess> m_daemon;
    bool m_isListening = false;
};

}  // namespace quietlark
