#pragma once

#include <QMainWindow>

#include "app/window_style.h"

class QScrollArea;

namespace quietlark {

/// One of the application's windows: framed and sized as its style says, larger only where the
/// user's font or language needs it, and while it is shown never smaller than it was. Comes up in
/// the middle of the screen that the user is at.
class AppWindow final : public QMainWindow {
    Q_OBJECT

public:
    /// `content` becomes the window's; `margin` around it in points.
    AppWindow(QWidget* content, const WindowStyle& style, int margin);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    [[nodiscard]] QSize sizeFor(const QScreen& screen) const;
    [[nodiscard]] QSize neededSize() const;
    [[nodiscard]] const QScreen& userScreen() const;

    const QSize m_usualSize;
    QScrollArea* m_scroll;  ///< for screens smaller than the content
};

}  // namespace quietlark
