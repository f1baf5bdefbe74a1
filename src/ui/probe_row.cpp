#include "ui/probe_row.h"

#include <QHBoxLayout>

#include "ui/page_labels.h"
#include "ui/symbol_label.h"

namespace quietlark {

namespace {

using Case = ProbeState::Case;
using Tone = SymbolLabel::Tone;

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
      m_symbol(new SymbolLabel({}, fontMetrics().height(), Tone::success)),
      m_text(makePlainLabel({})) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_busy);
    layout->addWidget(m_symbol);
    layout->addWidget(m_text, 1);
    setMinimumHeight(m_text->fontMetrics().height());
    m_busy->hide();
    m_symbol->hide();
    m_text->hide();
}

void ProbeRow::setKind(Case kind) {
    if (kind == m_kind) return;
    m_kind = kind;
    m_text->setText(sentence(kind));
    m_text->setVisible(!m_text->text().isEmpty());
    m_busy->setVisible(kind == Case::probing);
    m_symbol->setVisible(kind == Case::ok || kind == Case::failed);
    m_symbol->setName(kind == Case::ok ? QStringLiteral("checkmark.circle.fill")
                                       : QStringLiteral("xmark.circle.fill"));
    m_symbol->setTone(kind == Case::ok ? Tone::success : Tone::failure);
}

QString ProbeRow::text() const {
    return m_text->text();
}

}  // namespace quietlark
