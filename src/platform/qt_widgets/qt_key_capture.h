#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <QObject>

#include "platform/key_capture.h"

class QKeyEvent;

namespace quietlark {

/// Takes keys on their way from Qt to the windows. There must be a QGuiApplication.
class QtKeyCapture final : public QObject, public KeyCapture {
    Q_OBJECT

public:
    /// Translates the window system's number of a key.
    using KeyCodeOf = std::function<std::optional<KeyCode>(quint32 nativeScanCode)>;

    explicit QtKeyCapture(KeyCodeOf keyCodeOf);

    [[nodiscard]] Cancellable capture(Handler handler) override;
    [[nodiscard]] bool holdsKeys() const override { return m_handler || m_keyDown; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void take(const QKeyEvent& event);

    const KeyCodeOf m_keyCodeOf;
    std::shared_ptr<const Handler> m_handler;
    std::optional<quint32> m_keyDown;  ///< the native number of the key taken last
};

}  // namespace quietlark
