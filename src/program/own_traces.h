#pragma once

#include "app/uninstall.h"
#include "platform/linux/installation/linux_installation.h"
#include "platform/linux/removal/linux_own_files.h"
#include "platform/linux/removal/linux_privacy_records.h"
#include "platform/linux/removal/linux_recycler.h"
#include "platform/linux/xdg/autostart_entry.h"
#include "platform/qt/settings_user_defaults.h"

namespace quietlark {

/// What the program has left on this computer, as the environment says, and how to take it away.
/// The one place that chooses these adapters. Main thread.
struct OwnTraces {
    /// `settingsFile` as in Config::defaultFileURL().
    explicit OwnTraces(const QString& settingsFile);

    /// For the uninstaller.
    [[nodiscard]] Uninstall::Computer computer() {
        return {installation, defaults, loginItem, files, privacy, recycler};
    }

    LinuxInstallation installation;
    SettingsUserDefaults defaults;
    AutostartEntry loginItem;
    LinuxOwnFiles files;
    LinuxPrivacyRecords privacy;
    LinuxRecycler recycler;
};

}  // namespace quietlark
