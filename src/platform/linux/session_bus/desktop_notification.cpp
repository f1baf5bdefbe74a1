#include "platform/linux/session_bus/desktop_notification.h"

#include <utility>

#include <QDBusMessage>
#include <QVariantMap>

#include "platform/linux/session_bus/pending_answer.h"
#include "platform/linux/session_bus/session_bus_names.h"

namespace quietlark {

namespace {

constexpr quint32 replacesNone = 0;
constexpr qint32 asLongAsTheDesktopLikes = -1;

}  // namespace

Cancellable notifyUser(const QDBusConnection& sessionBus, const QString& summary,
                       const QString& body, std::function<void()> onNobody) {
    const QString name = QStringLiteral("org.freedesktop.Notifications");
    auto message = QDBusMessage::createMethodCall(
        name, QStringLiteral("/org/freedesktop/Notifications"), name, QStringLiteral("Notify"));
    // Where it may hold markup, these would begin some.
    const QString plain = body.toHtmlEscaped();
    message << QStringLiteral("Quietlark") << replacesNone << session_bus::service << summary
            << plain << QStringList()
            << QVariantMap{{QStringLiteral("desktop-entry"), session_bus::service}}
            << asLongAsTheDesktopLikes;
    return ask(sessionBus, message, [onNobody = std::move(onNobody)](const QDBusMessage& reply) {
        if (reply.type() == QDBusMessage::ErrorMessage) onNobody();
    });
}

}  // namespace quietlark
