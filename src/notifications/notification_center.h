#pragma once

#include <QObject>
#include <QString>

namespace quietlark {

/// Names of the notifications that go through the NotificationCenter.
namespace notification {
/// The speech model has been installed.
inline const QString modelReady = QStringLiteral("net.quietlark.modelReady");
/// The user wants the local server registered.
inline const QString registerDaemonRequested =
    QStringLiteral("net.quietlark.registerDaemonRequested");
/// The user wants Quietlark removed.
inline const QString uninstallRequested = QStringLiteral("net.quietlark.uninstallRequested");
}  // namespace notification

/// Passes short news between parts of this process that do not know each other. Main thread.
class NotificationCenter final : public QObject {
    Q_OBJECT

public:
    /// Tells every observer before it returns.
    void post(const QString& name);

Q_SIGNALS:
    void posted(const QString& name);
};

}  // namespace quietlark
