#pragma once

#include <QWidget>

#include "screens/hotkey_setting.h"
#include "state/app_state.h"

namespace quietlark {

/// One hotkey among the settings: what it is for, and the field to change it. An edit is stored at
/// once.
class HotkeyRow final : public QWidget {
    Q_OBJECT

public:
    HotkeyRow(AppState& appState, HotkeyCaptureCoordinator& coordinator,
              const HotkeySetting& setting);
};

/// Both hotkeys, one above the other; for a window that has the state at hand.
[[nodiscard]] QWidget* makeHotkeyRows(AppState& appState, HotkeyCaptureCoordinator& coordinator);

}  // namespace quietlark
