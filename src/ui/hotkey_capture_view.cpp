#include "ui/hotkey_capture_view.h"

#include <algorithm>
#include <utility>

#include <QLabel>
#include <QStackedLayout>

#include "hotkeys/hotkey_display.h"
#include "screens/hotkey_setting.h"
#include "ui/chip_row.h"

namespace quietlark {

HotkeyCaptureView::HotkeyCaptureView(HotkeyCaptureCoordinator& coordinator,
                                     HotkeyCapture::Empty empty, QString name)
    : m_name(std::move(name)),
      m_capture(coordinator, empty),
      m_chips(new ChipRow),
      m_text(new QLabel),
      m_layout(new QStackedLayout(this)) {
    m_text->setTextFormat(Qt::PlainText);
    m_text->setAlignment(Qt::AlignCenter);
    for (QWidget* part : {static_cast<QWidget*>(m_chips), static_cast<QWidget*>(m_text)}) {
        part->setAttribute(Qt::WA_TransparentForMouseEvents);
        m_layout->addWidget(part);
    }
    setAutoDefault(false);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QPushButton::clicked, &m_capture, &HotkeyCapture::begin);
    connect(&m_capture, &HotkeyCapture::changed, this, &HotkeyCaptureView::refresh);
    refresh();
}

QSize HotkeyCaptureView::sizeHint() const {
    // Wide enough for the hint, so that nothing moves when a capture begins.
    const int margin = fontMetrics().height();
    const int hint = fontMetrics().horizontalAdvance(hotkeyCaptureHint());
    return {std::max(hint, m_chips->sizeHint().width()) + margin,
            m_chips->sizeHint().height() + margin * 3 / 4};
}

/// Of what is no hotkey, and may be of any length, as much as there is room for.
QString HotkeyCaptureView::shortened(const QString& text) const {
    return fontMetrics().elidedText(text, Qt::ElideMiddle,
                                    fontMetrics().horizontalAdvance(hotkeyCaptureHint()));
}

void HotkeyCaptureView::focusOutEvent(QFocusEvent* event) {
    m_capture.cancel();
    QPushButton::focusOutEvent(event);
}

void HotkeyCaptureView::hideEvent(QHideEvent* event) {
    m_capture.cancel();
    QPushButton::hideEvent(event);
}

void HotkeyCaptureView::refresh() {
    const QString spec = m_capture.spec().trimmed();
    const bool showsChips = !m_capture.isCapturing() && m_chips->setSpec(spec);
    m_text->setText(m_capture.isCapturing() ? hotkeyCaptureHint()
                    : spec.isEmpty()        ? hotkeyPlaceholder()
                                            : shortened(HotkeyDisplay::display(spec)));
    m_layout->setCurrentWidget(showsChips ? static_cast<QWidget*>(m_chips) : m_text);
    const QString value = spec.isEmpty() ? hotkeyPlaceholder() : HotkeyDisplay::displayJoined(spec);
    setAccessibleName(QStringLiteral("%1: %2").arg(
        m_name, m_capture.isCapturing() ? hotkeyCaptureHint() : value));
    updateGeometry();
}

}  // namespace quietlark
