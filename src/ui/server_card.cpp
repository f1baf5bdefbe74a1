#include "ui/server_card.h"

#include <algorithm>
#include <utility>

#include <QPainter>
#include <QStyle>

#include "ui/ink.h"
#include "ui/symbol_pixmap.h"

namespace quietlark {

namespace {

/// At the side where a line begins, as the card is mirrored; each text reads in its own direction.
int textFlags(Qt::LayoutDirection direction, int rest) {
    return QStyle::visualAlignment(direction, Qt::AlignLeft).toInt() | Qt::AlignAbsolute | rest;
}

}  // namespace

ServerCard::ServerCard(QString symbol, const QString& title) : m_symbol(std::move(symbol)) {
    setText(title);
    setAutoExclusive(true);
    setAttribute(Qt::WA_Hover);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void ServerCard::setSubtitle(const QString& subtitle) {
    if (subtitle == m_subtitle) return;
    m_subtitle = subtitle;
    setAccessibleDescription(subtitle);
    updateGeometry();
    update();
}

QSize ServerCard::sizeHint() const {
    const int width = em() * 26;
    return {width, heightForWidth(width)};
}

QSize ServerCard::minimumSizeHint() const {
    // The title stays on one line; one more, as the advance is rounded.
    const int title = QFontMetrics(titleFont()).horizontalAdvance(text()) + 1;
    const int width = std::max(em() * 15, places({}).title.left() + title + em());
    return {width, heightForWidth(width)};
}

int ServerCard::heightForWidth(int width) const {
    const Places at = places({width, 0});
    return std::max(at.symbol.bottom(), at.subtitle.bottom()) + 1 + em();
}

void ServerCard::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setLayoutDirection(Qt::LayoutDirectionAuto);
    drawFrame(painter);

    Places at = places(size());
    for (QRect* place : {&at.mark, &at.symbol, &at.title, &at.subtitle})
        *place = QStyle::visualRect(layoutDirection(), rect(), *place);
    const QColor accent = palette().color(QPalette::Highlight);
    const QColor text = palette().color(QPalette::Text);
    const QString mark =
        isChecked() ? QStringLiteral("largecircle.fill.circle") : QStringLiteral("circle");
    painter.drawPixmap(at.mark, symbolPixmap(mark, isChecked() ? accent : secondaryText(palette()),
                                             markEdge(), devicePixelRatioF()));
    painter.drawPixmap(at.symbol, symbolPixmap(m_symbol, text, symbolEdge(), devicePixelRatioF()));
    drawText(painter, at);
}

bool ServerCard::hitButton(const QPoint& point) const {
    return rect().contains(point);
}

ServerCard::Places ServerCard::places(const QSize& size) const {
    const int margin = em();
    const int textLeft = margin + markEdge() + margin + symbolEdge() + margin;
    const int textWidth = std::max(size.width() - textLeft - margin, 1);
    const int titleHeight = QFontMetrics(titleFont()).height();
    const int subtitleHeight =
        fontMetrics()
            .boundingRect(QRect(0, 0, textWidth, 0), Qt::TextWordWrap, m_subtitle)
            .height();

    // What is lower than the rest stands in its middle.
    const int textHeight = titleHeight + em() / 4 + subtitleHeight;
    const int room = std::max({textHeight, symbolEdge(), size.height() - 2 * margin});
    const auto top = [&](int height) { return margin + (room - height) / 2; };
    const int titleTop = top(textHeight);
    return {
        .mark = {margin, top(markEdge()), markEdge(), markEdge()},
        .symbol = {2 * margin + markEdge(), top(symbolEdge()), symbolEdge(), symbolEdge()},
        .title = {textLeft, titleTop, textWidth, titleHeight},
        .subtitle = {textLeft, titleTop + titleHeight + em() / 4, textWidth, subtitleHeight},
    };
}

QFont ServerCard::titleFont() const {
    QFont bold = font();
    bold.setBold(true);
    return bold;
}

int ServerCard::em() const {
    return fontMetrics().height();
}

int ServerCard::markEdge() const {
    return em();
}

int ServerCard::symbolEdge() const {
    return em() * 2;
}

void ServerCard::drawFrame(QPainter& painter) const {
    constexpr double radius = 6;
    const QColor base = palette().color(QPalette::Base);
    const QColor accent = palette().color(QPalette::Highlight);
    if (hasFocus()) {
        // A ring around the card, and the window between them.
        painter.setPen(QPen(accent, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), radius + 3, radius + 3);
    }
    const QColor edge = isChecked() || underMouse() ? accent : quietEdge(palette());
    painter.setPen(QPen(edge, isChecked() ? 2 : 1));
    painter.setBrush(isChecked() ? blended(accent, base, 0.08) : base);
    painter.drawRoundedRect(QRectF(rect()).adjusted(4, 4, -4, -4), radius, radius);
}

void ServerCard::drawText(QPainter& painter, const Places& at) const {
    painter.setFont(titleFont());
    painter.setPen(palette().color(QPalette::Text));
    const QString title =
        painter.fontMetrics().elidedText(text(), Qt::ElideRight, at.title.width());
    painter.drawText(at.title, textFlags(layoutDirection(), Qt::AlignVCenter), title);
    painter.setFont(font());
    painter.setPen(secondaryText(palette()));
    painter.drawText(at.subtitle, textFlags(layoutDirection(), Qt::AlignTop | Qt::TextWordWrap),
                     m_subtitle);
}

}  // namespace quietlark
