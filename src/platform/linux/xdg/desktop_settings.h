#pragma once

#include <optional>

#include <QString>
#include <QStringList>

#include "platform/settings_panes.h"

namespace quietlark {

/// The settings of the desktop that the user is at, where it has the pane and its program is
/// installed; else a page of help of our own in the user's browser.
class DesktopSettings final : public SettingsPanes {
public:
    /// `currentDesktop` as in XDG_CURRENT_DESKTOP; programs are looked for in `searchPath`, or in
    /// PATH when it is empty; the page of help is a file.
    DesktopSettings(const QString& currentDesktop, QString helpPage, QStringList searchPath = {});

    /// Starts a program of its own, which lives on when this one ends.
    void open(SettingsPane pane) override;

    /// The command that shows `pane`, its program by its full path; nothing when there is none.
    [[nodiscard]] std::optional<QStringList> commandFor(SettingsPane pane) const;

private:
    [[nodiscard]] std::optional<QStringList> installed(const QStringList& command) const;

    const QStringList m_desktops;
    const QString m_helpPage;
    const QStringList m_searchPath;
};

}  // namespace quietlark
