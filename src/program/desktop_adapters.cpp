#include "program/desktop_adapters.h"

#include <utility>

#include <QCoreApplication>

namespace quietlark {

namespace {

/// Of the unit that systemd knows the local server by.
QString serviceName() {
    const QString set = qEnvironmentVariable("QUIETLARK_SERVICE");
    return set.isEmpty() ? QStringLiteral("net.quietlark.server.service") : set;
}

QString helpPage() {
    return QCoreApplication::applicationDirPath() + QStringLiteral("/../share/quietlark/help.html");
}

}  // namespace

DesktopAdapters::DesktopAdapters(std::function<bool()> hasFocus)
    : keyboard(keyConnection, std::move(hasFocus)),
      serverUnit(serviceName(), sessionBus),
      settings(qEnvironmentVariable("XDG_CURRENT_DESKTOP"), helpPage()),
      privacy(sessionKindOf(qgetenv("XDG_SESSION_TYPE"), qgetenv("WAYLAND_DISPLAY")), microphone,
              keyboard, keys),
      permissions(privacy, settings, scheduler,
                  {.granted = [this] { return localNetworkProbe().granted(); },
                   .unavailable = [this] { return localNetworkProbe().unavailable(); }}) {}

LocalNetworkProbe& DesktopAdapters::localNetworkProbe() {
    if (!m_localNetworkProbe) m_localNetworkProbe.emplace(network);
    return *m_localNetworkProbe;
}

bool DesktopAdapters::isKnown() {
    const LocalNetworkProbe& probe = localNetworkProbe();
    // At the start of a session microphones come to the sound server one after the other: that
    // there is none yet says little.
    return serverUnit.isKnown() && (probe.granted() || probe.unavailable()) &&
           !microphone.unavailable();
}

}  // namespace quietlark
