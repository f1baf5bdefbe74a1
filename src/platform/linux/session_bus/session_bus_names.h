#pragma once

#include <QString>

namespace quietlark::session_bus {

/// The program's name on the session bus, which only one process has.
inline const QString service = QStringLiteral("net.quietlark.app");
/// Where the Desktop Entry Specification 1.5, section 8, wants an application's object: the name
/// with slashes.
inline const QString path = QStringLiteral("/net/quietlark/app");
inline const QString applicationInterface = QStringLiteral("org.freedesktop.Application");
inline const QString dictationInterface = QStringLiteral("net.quietlark.Dictation1");

}  // namespace quietlark::session_bus
