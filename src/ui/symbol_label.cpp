#include "ui/symbol_label.h"

#include <utility>

#include <QPainter>

#include "ui/symbol_pixmap.h"

namespace quietlark {

SymbolLabel::SymbolLabel(QString name, int edge, Tone tone)
    : m_name(std::move(name)), m_edge(edge), m_tone(tone) {
    setFixedSize(edge, edge);
}

void SymbolLabel::setName(const QString& name) {
    m_name = name;
    update();
}

void SymbolLabel::setTone(Tone tone) {
    m_tone = tone;
    update();
}

void SymbolLabel::paintEvent(QPaintEvent*) {
    QPainter(this).drawPixmap(rect(), symbolPixmap(m_name, color(), m_edge, devicePixelRatioF()));
}

QColor SymbolLabel::color() const {
    const bool isDark = palette().color(QPalette::Window).lightness() < 128;
    switch (m_tone) {
        case Tone::text:
            return palette().color(QPalette::WindowText);
        case Tone::accent:
            return palette().color(QPalette::Highlight);
        // With three to one against the window in light and in dark, as symbols need it.
        case Tone::warning:
            return isDark ? QColor(0xff, 0xb3, 0x40) : QColor(0xb3, 0x5c, 0x00);
        case Tone::success:
            return isDark ? QColor(0x4c, 0xd1, 0x6e) : QColor(0x1a, 0x7f, 0x37);
    }
    return {};
}

}  // namespace quietlark
