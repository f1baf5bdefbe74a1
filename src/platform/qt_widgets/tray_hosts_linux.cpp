#include <cstdlib>
#include <memory>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QGuiApplication>
#include <xcb/xcb.h>

#include "platform/qt_widgets/tray_hosts.h"

namespace quietlark {

namespace {

const QString notifierWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString notifierPath = QStringLiteral("/StatusNotifierWatcher");

template <typename Reply>
using XcbReply = std::unique_ptr<Reply, decltype(&std::free)>;

xcb_connection_t* x11Connection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t atomOf(xcb_connection_t* connection, const QByteArray& name) {
    const auto cookie =
        xcb_intern_atom(connection, false, std::uint16_t(name.size()), name.constData());
    const XcbReply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

}  // namespace

void TrayHosts::start() {
    auto* watcher = new QDBusServiceWatcher(notifierWatcher, QDBusConnection::sessionBus(),
                                            QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this,
            &TrayHosts::lookForNotifierHost);
    QDBusConnection::sessionBus().connect(notifierWatcher, notifierPath, notifierWatcher,
                                          QStringLiteral("StatusNotifierHostRegistered"), this,
                                          SLOT(lookForNotifierHost()));
    lookForNotifierHost();
    if (xcb_connection_t* const connection = x11Connection()) {
        m_manager = atomOf(connection, "MANAGER");
        m_selection = atomOf(connection, "_NET_SYSTEM_TRAY_S0");
        QCoreApplication::instance()->installNativeEventFilter(this);
        lookForXEmbedHost();
    }
}

void TrayHosts::lookForNotifierHost() {
    auto question = QDBusMessage::createMethodCall(
        notifierWatcher, notifierPath, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    question << notifierWatcher << QStringLiteral("IsStatusNotifierHostRegistered");
    question.setAutoStartService(false);
    auto* answer =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        answer->deleteLater();
        if (!reply.isError() && reply.value().variant().toBool()) finish();
    });
}

// A status bar of the freedesktop System Tray Protocol owns the selection _NET_SYSTEM_TRAY_Sn of
// its screen, here the first.
void TrayHosts::lookForXEmbedHost() {
    xcb_connection_t* const connection = x11Connection();
    const auto cookie = xcb_get_selection_owner(connection, m_selection);
    const XcbReply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection, cookie, nullptr), &std::free);
    if (reply && reply->owner != XCB_WINDOW_NONE) finish();
}

// Qt listens to the root window for the same message, so that it comes by here.
bool TrayHosts::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (m_found || eventType != "xcb_generic_event_t") return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    constexpr std::uint8_t sentByAProgram = 0x80;
    if ((event->response_type & ~sentByAProgram) != XCB_CLIENT_MESSAGE) return false;
    const auto* announcement = reinterpret_cast<const xcb_client_message_event_t*>(event);
    if (announcement->type == m_manager && announcement->data.data32[1] == m_selection) finish();
    return false;
}

void TrayHosts::finish() {
    if (m_found) return;
    m_found = true;
    Q_EMIT found();
}

}  // namespace quietlark
