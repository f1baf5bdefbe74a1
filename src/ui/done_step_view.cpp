#include "ui/done_step_view.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShowEvent>
#include <QVBoxLayout>

#include "ui/download_view.h"
#include "ui/page_labels.h"
#include "ui/symbol_label.h"

namespace quietlark {

namespace {

using Tone = SymbolLabel::Tone;

Tone toneOf(const DoneReadiness& readiness) {
    if (readiness.kind == DoneReadiness::Case::ready) return Tone::success;
    if (readiness.kind == DoneReadiness::Case::failed) return Tone::warning;
    return Tone::text;
}

void showText(QLabel& label, const QString& text) {
    label.setText(text);
    label.setVisible(!text.isEmpty());
}

}  // namespace

DoneStepView::DoneStepView(DoneStepModel& model, ModelDownloader& downloader)
    : m_model(model),
      m_symbol(new SymbolLabel({}, fontMetrics().height() * 3, Tone::text)),
      m_busy(makeBusyBar({})),
      m_title(makeTitle({})),
      m_text(makePlainLabel({})),
      m_hint(makePlainLabel({})),
      m_download(new DownloadView(downloader, Qt::AlignHCenter)),
      m_settings(makeButton(tr("Open Settings"))),
      m_trial(new QPlainTextEdit),
      m_note(makeCaption({})) {
    m_trial->setPlaceholderText(tr("Your transcribed words will appear here."));
    m_trial->setAccessibleName(tr("Try it out"));
    m_trial->setTabChangesFocus(true);
    m_trial->setMaximumHeight(fontMetrics().lineSpacing() * 5);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(fontMetrics().height() * 2 / 3);
    layout->addStretch();
    layout->addWidget(m_symbol, 0, Qt::AlignHCenter);
    layout->addWidget(m_busy, 0, Qt::AlignHCenter);
    for (QLabel* label : {m_title, m_text, m_hint}) {
        label->setAlignment(Qt::AlignCenter);
        layout->addWidget(label);
    }
    layout->addWidget(m_download);
    layout->addWidget(m_settings, 0, Qt::AlignHCenter);
    layout->addWidget(m_trial);
    layout->addWidget(m_note);
    layout->addStretch();
    connect(m_settings, &QPushButton::clicked, &m_model, &DoneStepModel::openSettings);
    connect(&m_model, &DoneStepModel::changed, this, &DoneStepView::refresh);
    refresh();
}

void DoneStepView::showEvent(QShowEvent* event) {
    if (!event->spontaneous()) m_model.appear();
    QWidget::showEvent(event);
}

void DoneStepView::hideEvent(QHideEvent* event) {
    if (!event->spontaneous()) m_model.disappear();
    QWidget::hideEvent(event);
}

void DoneStepView::refresh() {
    const auto content = m_model.content();
    m_symbol->setVisible(!content.symbol.isEmpty());
    m_symbol->setName(content.symbol);
    m_symbol->setTone(toneOf(m_model.readiness()));
    m_busy->setVisible(content.isBusy);
    // Set to what it is, it would be told again.
    if (m_busy->accessibleName() != content.text) m_busy->setAccessibleName(content.text);
    showText(*m_title, content.title);
    showText(*m_text, content.text);
    showText(*m_hint, content.hint);
    showText(*m_note, content.note);
    m_download->setVisible(content.showsDownload);
    m_settings->setVisible(content.offersSettings);
    m_trial->setVisible(content.offersTrial);
}

}  // namespace quietlark
