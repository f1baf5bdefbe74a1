#include "hotkeys/hotkey_capture.h"

#include <utility>

#include "hotkeys/hotkey_display.h"

namespace quietlark {

HotkeyCapture::HotkeyCapture(HotkeyCaptureCoordinator& coordinator, Empty empty)
    : m_coordinator(coordinator), m_empty(empty) {}

HotkeyCapture::~HotkeyCapture() {
    if (m_isCapturing) m_coordinator.end();
}

void HotkeyCapture::setSpec(const QString& spec) {
    if (std::exchange(m_spec, spec) != spec) Q_EMIT changed();
}

void HotkeyCapture::begin() {
    if (m_isCapturing) return;
    m_coordinator.begin([this](const KeyEvent& event) { handle(event); },
                        [this] {
                            m_isCapturing = false;
                            Q_EMIT changed();
                        });
    m_isCapturing = true;
    Q_EMIT changed();
}

void HotkeyCapture::cancel() {
    if (m_isCapturing) end(m_spec);
}

void HotkeyCapture::handle(const KeyEvent& event) {
    switch (event.keyCode) {
        case key_code::deleteBackward:
        case key_code::deleteForward:
            return end(m_empty == Empty::allowed ? QString() : m_spec);
        case key_code::escape:
            return end(m_spec);
        default:
            // A key that cannot be written down is as good as none.
            if (const auto spec = HotkeyDisplay::spec(event)) end(*spec);
    }
}

void HotkeyCapture::end(QString spec) {
    m_coordinator.end();
    m_isCapturing = false;
    const bool isEdit = spec != m_spec;
    m_spec = std::move(spec);
    Q_EMIT changed();
    if (isEdit) Q_EMIT edited(m_spec);
}

}  // namespace quietlark
