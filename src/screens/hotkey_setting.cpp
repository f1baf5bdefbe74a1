#include "screens/hotkey_setting.h"

#include <QCoreApplication>

namespace quietlark {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(HotkeySetting)
};

}  // namespace

HotkeySetting HotkeySetting::hold() {
    return {Texts::tr("Hold to dictate"), Texts::tr("Records while held, transcribes on release."),
            &Config::hotkey, HotkeyCapture::Empty::forbidden};
}

HotkeySetting HotkeySetting::toggle() {
    return {Texts::tr("Press to toggle"),
            Texts::tr("Press once to start, again to stop. Optional."), &Config::toggleHotkey,
            HotkeyCapture::Empty::allowed};
}

QString hotkeyPlaceholder() {
    return Texts::tr("Click to set");
}

QString hotkeyCaptureHint() {
    return Texts::tr("(Esc to cancel, Delete to clear)");
}

}  // namespace quietlark
