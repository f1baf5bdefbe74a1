#pragma once

#include <QObject>

class QPushButton;
class QWidget;

namespace quietlark {

/// The Return key in a view: wherever the focus is, it clicks one of the view's buttons, unless
/// what has the focus takes the key itself, as auto-default buttons do. Held down it clicks once.
/// Marks the button that it would click as the default one, which the toolkit does in a QDialog
/// only.
class ReturnKey final : public QObject {
    Q_OBJECT

public:
    /// `button` is a part of `view`; both must outlive this. While it is hidden or disabled nothing
    /// is clicked.
    ReturnKey(QWidget& view, QPushButton& button);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void onFocusChanged(QWidget* before, QWidget* now);

    QWidget& m_view;
    QPushButton& m_button;
};

}  // namespace quietlark
