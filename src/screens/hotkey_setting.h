#pragma once

#include <QString>

#include "config/config.h"
#include "hotkeys/hotkey_capture.h"

namespace quietlark {

/// One of the hotkeys among the settings, and how a window presents it.
struct HotkeySetting {
    QString title;
    QString subtitle;
    QString Config::*spec;
    HotkeyCapture::Empty empty;

    [[nodiscard]] static HotkeySetting hold();
    [[nodiscard]] static HotkeySetting toggle();
};

/// What a field says while it has no hotkey.
[[nodiscard]] QString hotkeyPlaceholder();

/// What a field says while it waits for keys.
[[nodiscard]] QString hotkeyCaptureHint();

}  // namespace quietlark
