#include "ui/page_labels.h"

#include <QEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>

#include "ui/ink.h"

namespace quietlark {

namespace {

/// Begins its lines where those of the page begin. A QLabel goes by its text, which in a mirrored
/// window may be one that reads from left to right.
class PlainLabel : public QLabel {
public:
    explicit PlainLabel(const QString& text) : QLabel(text) {
        setTextFormat(Qt::PlainText);
        setWordWrap(true);
        align();
    }

protected:
    void changeEvent(QEvent* event) override {
        if (event->type() == QEvent::LayoutDirectionChange) align();
        QLabel::changeEvent(event);
    }

private:
    void align() {
        if (alignment().testFlag(Qt::AlignHCenter)) return;
        setAlignment(QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft) | Qt::AlignVCenter);
    }
};

class Caption final : public PlainLabel {
public:
    explicit Caption(const QString& text) : PlainLabel(text) { tint(); }

protected:
    void changeEvent(QEvent* event) override {
        if (event->type() == QEvent::PaletteChange) tint();
        PlainLabel::changeEvent(event);
    }

private:
    /// The desktop may turn dark at any time.
    void tint() {
        QPalette own;
        own.setColor(QPalette::WindowText, secondaryText(palette()));
        setPalette(own);
    }
};

}  // namespace

QLabel* makePlainLabel(const QString& text) {
    return new PlainLabel(text);
}

QLabel* makeHeading(const QString& text) {
    QLabel* label = makePlainLabel(text);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
}

QLabel* makeTitle(const QString& text) {
    QLabel* label = makeHeading(text);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 1.4);
    label->setFont(font);
    return label;
}

QLabel* makeCaption(const QString& text) {
    return new Caption(text);
}

QPushButton* makeButton(const QString& text) {
    auto* button = new QPushButton(text);
    button->setAutoDefault(false);
    giveAir(*button);
    return button;
}

void giveAir(QPushButton& button) {
    button.setMinimumWidth(button.sizeHint().width() + button.fontMetrics().height());
}

QWidget* makeBusyBar(const QString& what) {
    auto* bar = new QProgressBar;
    bar->setAccessibleName(what);
    bar->setRange(0, 0);
    bar->setTextVisible(false);
    bar->setFixedWidth(bar->fontMetrics().height() * 4);
    bar->setMaximumHeight(bar->fontMetrics().height() / 2);
    return bar;
}

}  // namespace quietlark
