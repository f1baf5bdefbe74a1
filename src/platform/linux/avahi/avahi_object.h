#pragma once

#include <functional>

#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariantList>

#include "platform/linux/avahi/avahi_daemon.h"

namespace quietlark {

/// A browser or resolver that the Avahi daemon runs for us; it ends with this object. None of its
/// signals is lost, however early it comes.
class AvahiObject final : public QObject {
    Q_OBJECT

public:
    enum class Kind { ServiceBrowser, ServiceResolver };

    /// Any of them may destroy this object.
    struct Handlers {
        std::function<void()> started;
        std::function<void()> refused;  ///< it does not run, or does not run any more
        std::function<void(const QDBusMessage& signal)> signalled;
    };

    /// `arguments` are those of the daemon's ...Prepare method. The daemon is running now; when it
    /// ends, nothing more is heard.
    AvahiObject(AvahiDaemon& daemon, Kind kind, const QVariantList& arguments, Handlers handlers);
    ~AvahiObject() override;

private:
    void start(const QString& path);
    void refuse();

    AvahiDaemon& m_daemon;
    const QString m_interface;
    const Handlers m_handlers;
    QString m_path;  ///< empty until the daemon has told it
};

}  // namespace quietlark
