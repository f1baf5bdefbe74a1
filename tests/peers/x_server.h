#pragma once

#include <memory>

#include <QByteArray>
#include <QProcessEnvironment>

#include "peers/child_process.h"

namespace quietlark {

/// A real X server of its own (Xvfb), without a window manager.
class XServer {
public:
    XServer();

    /// Such as ":7"; empty when the server did not come up.
    [[nodiscard]] const QByteArray& display() const { return m_display; }

    /// This process's environment with DISPLAY set to the server, and no Wayland.
    [[nodiscard]] QProcessEnvironment environment() const;

    /// Runs a program on the server to its end; answers its standard output.
    QByteArray run(const QString& program, const QStringList& arguments) const;

    /// Starts a program on the server.
    [[nodiscard]] std::unique_ptr<ChildProcess> start(const QString& program,
                                                      const QStringList& arguments) const;

    /// Ends the server; its clients lose their connection.
    void end() { m_server.end(); }

    [[nodiscard]] qint64 processId() const { return m_server.processId(); }

private:
    ChildProcess m_server;
    QByteArray m_display;
};

}  // namespace quietlark
