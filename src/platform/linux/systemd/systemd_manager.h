#pragma once

#include <chrono>
#include <functional>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QVariantList>

namespace quietlark {

/// The service manager of the user (org.freedesktop.systemd1.Manager) as the session bus shows it:
/// questions, and its news. Main thread; nothing here waits for another program.
class SystemdManager final : public QObject {
    Q_OBJECT

public:
    using Handler = std::function<void(const QDBusMessage& reply)>;

    /// An answer is awaited for `patience`, and an error after that.
    SystemdManager(QDBusConnection bus, std::chrono::milliseconds patience);

    /// Calls `method`. `onReply` gets the reply or the error, once, and never before this returns;
    /// never if `context` is gone by then.
    void call(const QString& method, const QVariantList& arguments, QObject* context,
              Handler onReply);

    [[nodiscard]] std::chrono::milliseconds patience() const { return m_patience; }

Q_SIGNALS:
    /// There is a service manager, or another one than before. Its news arrive from now on.
    void appeared();

    /// There is none, or none any more.
    void gone();

    /// Units have been enabled, disabled, masked or read anew.
    void unitFilesChanged();

    /// A job has ended; `result` is "done" when it did what it was for.
    void jobRemoved(const QString& job, const QString& result);

private:
    void askForOwner();
    void setOwner(const QString& owner);
    void follow(const QString& owner);
    void stopFollowing();

    // By name, as QDBusConnection wants its slots.
    Q_SLOT void onUnitFilesChanged();
    Q_SLOT void onReloading(bool active);
    Q_SLOT void onJobRemoved(const QDBusMessage& signal);

    QDBusConnection m_bus;
    const std::chrono::milliseconds m_patience;
    QDBusServiceWatcher m_watcher;
    QString m_owner;
};

}  // namespace quietlark
