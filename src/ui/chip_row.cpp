#include "ui/chip_row.h"

#include <algorithm>

#include <QPainter>

#include "ui/ink.h"

namespace quietlark {

namespace {

/// Where the symbol is the label in another form, once is enough.
QString textOf(const HotkeyDisplay::Chip& chip) {
    const QString symbol = chip.symbol.value_or(QString());
    if (symbol.isEmpty() || symbol == chip.label) return chip.label;
    return chip.label.isEmpty() ? symbol : symbol + u' ' + chip.label;
}

}  // namespace

ChipRow::ChipRow() = default;

bool ChipRow::setSpec(const QString& spec) {
    m_texts.clear();
    for (const auto& chip : HotkeyDisplay::chips(spec))
        m_texts << textOf(chip);
    updateGeometry();
    update();
    return !m_texts.isEmpty();
}

QSize ChipRow::sizeHint() const {
    int width = gap() * static_cast<int>(std::max<qsizetype>(0, m_texts.size() - 1));
    for (const QString& text : m_texts)
        width += chipWidth(text);
    return {width, chipHeight()};
}

void ChipRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double radius = chipHeight() / 4.0;
    QRect chip(0, (height() - chipHeight()) / 2, 0, chipHeight());
    // Keys are pressed from left to right, whatever the direction of the text around them.
    chip.moveLeft((width() - sizeHint().width()) / 2);
    for (const QString& text : m_texts) {
        chip.setWidth(chipWidth(text));
        painter.setPen(quietEdge(palette()));
        painter.setBrush(palette().color(QPalette::Base));
        painter.drawRoundedRect(QRectF(chip).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(chip, Qt::AlignCenter, text);
        chip.moveLeft(chip.right() + 1 + gap());
    }
}

int ChipRow::chipWidth(const QString& text) const {
    return std::max(chipHeight(), fontMetrics().horizontalAdvance(text) + fontMetrics().height());
}

int ChipRow::chipHeight() const {
    return fontMetrics().height() * 4 / 3;
}

int ChipRow::gap() const {
    return fontMetrics().height() / 3;
}

}  // namespace quietlark
