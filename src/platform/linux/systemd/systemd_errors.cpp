#include "platform/linux/systemd/systemd_errors.h"

#include <initializer_list>

#include <QCoreApplication>
#include <QDBusMessage>

namespace quietlark {
namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("SystemdUserService", text);
}

bool isOneOf(const QString& name, std::initializer_list<const char*> names) {
    for (const char* candidate : names) {
        if (name == QLatin1String(candidate)) return true;
    }
    return false;
}

}  // namespace

QString sentenceForError(const QString& unit, const QDBusMessage& error) {
    const QString name = error.errorName();
    if (isOneOf(name, {"org.freedesktop.systemd1.UnitMasked"})) {
        return tr("%1 is forbidden on this computer. Allow it with: systemctl --user unmask %1")
            .arg(unit);
    }
    if (isOneOf(name, {"org.freedesktop.DBus.Error.FileNotFound",
                       "org.freedesktop.systemd1.NoSuchUnit"})) {
        return tr("%1 is not installed. Install Quietlark again.").arg(unit);
    }
    if (isOneOf(name, {"org.freedesktop.DBus.Error.ServiceUnknown",
                       "org.freedesktop.DBus.Error.NameHasNoOwner",
                       "org.freedesktop.DBus.Error.Disconnected"})) {
        return tr(
            "This session has no service manager (systemd). Start quietlark-server yourself "
            "when you log in.");
    }
    if (isOneOf(name, {"org.freedesktop.DBus.Error.NoReply", "org.freedesktop.DBus.Error.Timeout",
                       "org.freedesktop.DBus.Error.TimedOut"})) {
        return tr("The service manager (systemd) does not answer. Try again in a while.");
    }
    return tr("The service manager (systemd) reports: %1").arg(error.errorMessage());
}

QString sentenceForJobResult(const QString& unit, const QString& result) {
    if (result == QLatin1String("timeout")) return sentenceForUnfinishedJob(unit);
    if (result == QLatin1String("canceled")) {
        return tr("Another program has called off the change to %1. Try again.").arg(unit);
    }
    if (result == QLatin1String("dependency")) {
        return tr("%1 did not start, because something that it needs did not. "
                  "See: systemctl --user list-dependencies %1")
            .arg(unit);
    }
    return tr("%1 did not start. See: journalctl --user -u %1").arg(unit);
}

QString sentenceForUnfinishedJob(const QString& unit) {
    return tr("%1 takes too long. See: systemctl --user status %1").arg(unit);
}

QString sentenceForLostManager() {
    return tr("The service manager (systemd) has stopped meanwhile. Try again.");
}

}  // namespace quietlark
