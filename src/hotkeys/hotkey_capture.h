#pragma once

#include <QObject>
#include <QString>

#include "hotkeys/hotkey_capture_coordinator.h"

namespace quietlark {

/// What a capture field holds and does: the next key press becomes its hotkey. Main thread.
class HotkeyCapture final : public QObject {
    Q_OBJECT

public:
    enum class Empty { forbidden, allowed };

    /// With Empty::allowed, Delete clears the hotkey.
    HotkeyCapture(HotkeyCaptureCoordinator& coordinator, Empty empty);
    ~HotkeyCapture() override;

    [[nodiscard]] const QString& spec() const { return m_spec; }
    [[nodiscard]] bool isCapturing() const { return m_isCapturing; }

    /// What the settings say; not an edit.
    void setSpec(const QString& spec);

    /// Takes the keys, from another field if need be.
    void begin();

    /// Gives them back, the spec as it was; harmless when they are not held.
    void cancel();

Q_SIGNALS:
    /// The user has given another spec.
    void edited(const QString& spec);

    /// spec() or isCapturing() may answer something else.
    void changed();

private:
    void handle(const KeyEvent& event);
    void end(QString spec);

    HotkeyCaptureCoordinator& m_coordinator;
    const Empty m_empty;
    QString m_spec;
    bool m_isCapturing = false;
};

}  // namespace quietlark
