#pragma once

#include <vector>

#include "platform/settings_panes.h"

namespace quietlark {

/// Remembers the panes instead of showing them.
class FakeSettingsPanes final : public SettingsPanes {
public:
    void open(SettingsPane pane) override { m_opened.push_back(pane); }

    /// What has been opened, in order.
    [[nodiscard]] const std::vector<SettingsPane>& opened() const { return m_opened; }

private:
    std::vector<SettingsPane> m_opened;
};

}  // namespace quietlark
