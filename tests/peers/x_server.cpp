#include "peers/x_server.h"

namespace quietlark {

XServer::XServer()
    : m_server(QStringLiteral("Xvfb"),
               {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                QStringLiteral("0"), QStringLiteral("1024x768x24"), QStringLiteral("-nolisten"),
                QStringLiteral("tcp"), QStringLiteral("-noreset")}) {
    const QByteArray number = m_server.readLine();
    if (!number.isEmpty()) m_display = ":" + number;
}

QProcessEnvironment XServer::environment() const {
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), QString::fromLatin1(m_display));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    environment.insert(QStringLiteral("GDK_BACKEND"), QStringLiteral("x11"));
    return environment;
}

QByteArray XServer::run(const QString& program, const QStringList& arguments) const {
    return ChildProcess(program, arguments, environment()).readAll();
}

std::unique_ptr<ChildProcess> XServer::start(const QString& program,
                                             const QStringList& arguments) const {
    return std::make_unique<ChildProcess>(program, arguments, environment());
}

}  // namespace quietlark
