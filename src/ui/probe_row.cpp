#include "ui/probe_row.h"

#include <algorithm>

#include <QEvent>
#include <QHBoxLayout>

#include "ui/page_labels.h"
#include "ui/symbol_pixmap.h"

namespace quietlark {

namespace {

using Case = ProbeState::Case;

QString sentence(Case kind) {
    switch (kind) {
        case Case::ok:
            return ProbeRow::tr("Connected");
        case Case::idle:
            return {};
        case Case::probing:
            return ProbeRow::tr("Checking…");
        case Case::failed:
            return ProbeRow::tr("Can't reach that server");
    }
    return {};
}

}  // namespace

ProbeRow::ProbeRow()
    : m_busy(makeBusyBar(sentence(Case::probing))),
      m_symbol(new QLabel),
      m_text(makePlainLabel({})) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_busy);
    layout->addWidget(m_symbol);
    layout->addWidget(m_text, 1);
    setMinimumHeight(m_text->fontMetrics().height());
    m_busy->hide();
    m_symbol->hide();
}

void ProbeRow::setKind(Case kind) {
    if (kind == m_kind) return;
    m_kind = kind;
    m_text->setText(sentence(kind));
    m_busy->setVisible(kind == Case::probing);
    drawSymbol();
}

QString ProbeRow::text() const {
    return m_text->text();
}

void ProbeRow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) drawSymbol();
    QWidget::changeEvent(event);
}

void ProbeRow::drawSymbol() {
    const bool isOk = m_kind == Case::ok;
    m_symbol->setVisible(isOk || m_kind == Case::failed);
    const bool isDark = palette().color(QPalette::Window).lightness() < 128;
    const QColor green = isDark ? QColor(0x57, 0xc7, 0x7a) : QColor(0x1c, 0x80, 0x3c);
    const QColor red = isDark ? QColor(0xff, 0x7b, 0x72) : QColor(0xc0, 0x22, 0x1c);
    const QString name =
        isOk ? QStringLiteral("checkmark.circle.fill") : QStringLiteral("xmark.circle.fill");
    m_symbol->setPixmap(symbolPixmap(name, isOk ? green : red, m_text->fontMetrics().height(),
                                     devicePixelRatioF()));
}

}  // namespace quietlark
