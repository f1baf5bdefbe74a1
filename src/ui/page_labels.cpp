#include "ui/page_labels.h"

#include <QProgressBar>

#include "ui/ink.h"

namespace quietlark {

QLabel* makePlainLabel(const QString& text) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
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
    QLabel* label = makePlainLabel(text);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, secondaryText(palette));
    label->setPalette(palette);
    return label;
}

QWidget* makeBusyBar() {
    auto* bar = new QProgressBar;
    bar->setRange(0, 0);
    bar->setTextVisible(false);
    bar->setFixedWidth(bar->fontMetrics().height() * 4);
    bar->setMaximumHeight(bar->fontMetrics().height() / 2);
    return bar;
}

}  // namespace quietlark
