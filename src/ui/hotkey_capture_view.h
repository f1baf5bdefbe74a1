#pragma once

#include <QPushButton>

#include "hotkeys/hotkey_capture.h"

class QStackedLayout;
class QLabel;

namespace quietlark {

class ChipRow;

/// A field that shows a hotkey as a row of keys; clicked, it takes the next key press for a new
/// one.
class HotkeyCaptureView final : public QPushButton {
    Q_OBJECT

public:
    /// `name` says to who cannot see the field which hotkey it is for.
    HotkeyCaptureView(HotkeyCaptureCoordinator& coordinator, HotkeyCapture::Empty empty,
                      QString name);

    [[nodiscard]] HotkeyCapture& capture() { return m_capture; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void refresh();
    [[nodiscard]] QString shortened(const QString& text) const;

    const QString m_name;
    HotkeyCapture m_capture;
    ChipRow* m_chips;
    QLabel* m_text;
    QStackedLayout* m_layout;
};

}  // namespace quietlark
