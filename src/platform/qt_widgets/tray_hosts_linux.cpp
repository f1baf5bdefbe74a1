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

xcb_atom_t atomOf(xcb_connection_t* connection, const QByteArray& name) {
    const auto cookie =
        xcb_intern_atom(connection, true, std::uint16_t(name.size()), name.constData());
    const XcbReply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

/// Whether a status bar of the freedesktop System Tray Protocol is there: one that owns the
/// selection _NET_SYSTEM_TRAY_Sn of the first screen.
bool hasXEmbedHost() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11) return false;
    xcb_connection_t* const connection = x11->connection();
    const xcb_atom_t selection = atomOf(connection, "_NET_SYSTEM_TRAY_S0");
    // Nobody has named it yet, so nobody owns it.
    if (selection == XCB_ATOM_NONE) return false;
    const auto cookie = xcb_get_selection_owner(connection, selection);
    const XcbReply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection, cookie, nullptr), &std::free);
    return reply && reply->owner != XCB_WINDOW_NONE;
}

}  // namespace

TrayHosts::TrayHosts(Scheduler& scheduler) : m_scheduler(scheduler) {}

void TrayHosts::start() {
    auto* watcher = new QDBusServiceWatcher(notifierWatcher, QDBusConnection::sessionBus(),
                                            QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this,
            &TrayHosts::lookForNotifierHost);
    m_looking = m_scheduler.every(lookInterval, [this] {
        lookForNotifierHost();
        lookForXEmbedHost();
    });
    lookForNotifierHost();
    lookForXEmbedHost();
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

void TrayHosts::lookForXEmbedHost() {
    if (hasXEmbedHost()) finish();
}

void TrayHosts::finish() {
    if (m_found) return;
    m_found = true;
    m_looking.cancel();
    Q_EMIT found();
}

}  // namespace quietlark
