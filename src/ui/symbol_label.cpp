#include "ui/symbol_label.h"

#include <utility>

#include <QAccessibleWidget>
#include <QEvent>

#include "ui/symbol_pixmap.h"

namespace quietlark {

namespace {

class ToldSymbol final : public QAccessibleWidget {
public:
    explicit ToldSymbol(QWidget* symbol) : QAccessibleWidget(symbol) {}

    QAccessible::Role role() const override {
        return widget()->accessibleName().isEmpty() ? QAccessible::Client : QAccessible::Graphic;
    }
};

QAccessibleInterface* tell(const QString&, QObject* object) {
    auto* symbol = qobject_cast<SymbolLabel*>(object);
    return symbol ? new ToldSymbol(symbol) : nullptr;
}

}  // namespace

SymbolLabel::SymbolLabel(QString name, int edge, Tone tone)
    : m_name(std::move(name)), m_edge(edge), m_tone(tone) {
    // Once is enough; the toolkit passes over the rest.
    QAccessible::installFactory(tell);
    setFixedSize(edge, edge);
    draw();
}

void SymbolLabel::setName(const QString& name) {
    if (std::exchange(m_name, name) != name) draw();
}

void SymbolLabel::setTone(Tone tone) {
    if (std::exchange(m_tone, tone) != tone) draw();
}

void SymbolLabel::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) draw();
    QLabel::changeEvent(event);
}

void SymbolLabel::showEvent(QShowEvent* event) {
    // Only now it is known how sharp the screen is.
    draw();
    QLabel::showEvent(event);
}

void SymbolLabel::draw() {
    setPixmap(m_name.isEmpty() ? QPixmap()
                               : symbolPixmap(m_name, color(), m_edge, devicePixelRatioF()));
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
        case Tone::failure:
            return isDark ? QColor(0xff, 0x7b, 0x72) : QColor(0xc0, 0x22, 0x1c);
    }
    return {};
}

}  // namespace quietlark
