#pragma once

#include <memory>
#include <optional>

#include <QDBusConnection>
#include <QImage>
#include <QRect>
#include <QTemporaryDir>

#include "peers/child_process.h"
#include "peers/x_server.h"

namespace quietlark {

/// A desktop of the test's own: a screen, a session bus, and a tray when the test says so.
class TrayDesktop {
public:
    /// The tray's program, and the protocol that it alone speaks.
    enum class Host {
        icewm,      ///< XEmbed
        lxqtPanel,  ///< StatusNotifierItem
    };

    explicit TrayDesktop(Host host);

    void startHost();
    void stopHost();

    /// Starts tray_program; answers whether it got ready.
    [[nodiscard]] bool startProgram();
    [[nodiscard]] ChildProcess& program() { return *m_program; }

    /// Where the screen shows that colour; nothing where it does not.
    [[nodiscard]] std::optional<QRect> areaOf(const QColor& color);

    /// What the screen shows there.
    [[nodiscard]] QImage picture(const QRect& area) { return screen().copy(area); }

    void click(const QPoint& point, int button);
    void pressKeys(const QStringList& keys);

    /// Chooses an item of the menu that the program offers on the bus, as the panel does; false
    /// when there is none.
    [[nodiscard]] bool chooseOnBus(const QString& label);

private:
    [[nodiscard]] QProcessEnvironment environment() const;
    [[nodiscard]] QImage screen();

    Host m_host;
    QTemporaryDir m_home;
    XServer m_screen;
    ChildProcess m_bus;
    QString m_busAddress;
    std::unique_ptr<ChildProcess> m_hostProcess;
    std::unique_ptr<ChildProcess> m_program;
};

}  // namespace quietlark
