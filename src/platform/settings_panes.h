#pragma once

namespace quietlark {

/// A page of the system's settings.
enum class SettingsPane { Microphone, InputMonitoring, Accessibility, LocalNetwork, LoginItems };

/// The system's own settings, or what helps the user in their place. Main thread.
class SettingsPanes {
public:
    virtual ~SettingsPanes() = default;

    /// Shows the pane to the user. Returns at once; where nothing can be shown, nothing happens.
    virtual void open(SettingsPane pane) = 0;
};

}  // namespace quietlark
