#include "platform/linux/xdg/desktop_settings.h"

#include <array>
#include <utility>

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

namespace quietlark {
namespace {

struct Pane {
    const char* desktop;  ///< as in XDG_CURRENT_DESKTOP; empty for any
    SettingsPane pane;
    const char* command;
};

// In the order in which they are tried. No desktop has a pane for the keys: there is nothing to
// switch on where they can be had at all. Nor has any for the services of a user: what starts at
// login is another thing.
constexpr std::array panes{
    Pane{"GNOME", SettingsPane::Microphone, "gnome-control-center sound"},
    Pane{"GNOME", SettingsPane::LocalNetwork, "gnome-control-center network"},
    Pane{"KDE", SettingsPane::Microphone, "systemsettings kcm_pulseaudio"},
    Pane{"KDE", SettingsPane::Microphone, "systemsettings5 kcm_pulseaudio"},
    Pane{"KDE", SettingsPane::LocalNetwork, "systemsettings kcm_networkmanagement"},
    Pane{"KDE", SettingsPane::LocalNetwork, "systemsettings5 kcm_networkmanagement"},
    Pane{"X-Cinnamon", SettingsPane::Microphone, "cinnamon-settings sound"},
    Pane{"X-Cinnamon", SettingsPane::LocalNetwork, "cinnamon-settings network"},
    Pane{"MATE", SettingsPane::Microphone, "mate-volume-control"},
    Pane{"", SettingsPane::Microphone, "pavucontrol --tab=4"},
    Pane{"", SettingsPane::LocalNetwork, "nm-connection-editor"},
};

/// The place in the page of help.
QString anchorOf(SettingsPane pane) {
    switch (pane) {
        case SettingsPane::Microphone:
            return QStringLiteral("microphone");
        case SettingsPane::InputMonitoring:
            return QStringLiteral("input-monitoring");
        case SettingsPane::Accessibility:
            return QStringLiteral("accessibility");
        case SettingsPane::LocalNetwork:
            return QStringLiteral("local-network");
        case SettingsPane::LoginItems:
            return QStringLiteral("login-items");
    }
    return {};
}

}  // namespace

DesktopSettings::DesktopSettings(const QString& currentDesktop, QString helpPage,
                                 QStringList searchPath)
    : m_desktops(currentDesktop.split(QLatin1Char(':'))),
      m_helpPage(std::move(helpPage)),
      m_searchPath(std::move(searchPath)) {}

void DesktopSettings::open(SettingsPane pane) {
    const auto command = commandFor(pane);
    if (command) (void)QProcess::startDetached(command->first(), command->mid(1));
}

std::optional<QStringList> DesktopSettings::commandFor(SettingsPane pane) const {
    for (const Pane& one : panes) {
        const QString desktop = QLatin1String(one.desktop);
        if (one.pane != pane || (!desktop.isEmpty() && !m_desktops.contains(desktop))) continue;
        if (auto command = installed(QString::fromLatin1(one.command).split(QLatin1Char(' '))))
            return command;
    }
    if (!QFileInfo::exists(m_helpPage)) return std::nullopt;
    QUrl page = QUrl::fromLocalFile(m_helpPage);
    page.setFragment(anchorOf(pane));
    return installed({QStringLiteral("xdg-open"), page.toString(QUrl::FullyEncoded)});
}

std::optional<QStringList> DesktopSettings::installed(const QStringList& command) const {
    const QString program = QStandardPaths::findExecutable(command.first(), m_searchPath);
    if (program.isEmpty()) return std::nullopt;
    return QStringList{program} + command.mid(1);
}

}  // namespace quietlark
