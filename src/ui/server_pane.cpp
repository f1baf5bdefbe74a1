#include "ui/server_pane.h"

#include <utility>

#include <QLabel>
#include <QPushButton>
#include <QShowEvent>
#include <QStackedLayout>
#include <QVBoxLayout>

#include "ui/download_view.h"
#include "ui/page_labels.h"
#include "ui/server_picker_pane.h"
#include "ui/symbol_label.h"

namespace quietlark {

using Tone = SymbolLabel::Tone;

ServerPane::ServerPane(std::unique_ptr<ServerPaneModel> model, MakePicker makePicker)
    : m_model(std::move(model)),
      m_makePicker(std::move(makePicker)),
      m_symbol(new SymbolLabel({}, fontMetrics().height() * 5 / 2, Tone::text)),
      m_title(makeTitle({})),
      m_subtitle(makeCaption({})),
      m_fixUp(makeFixUp()),
      m_download(new DownloadView(m_model->downloader(), Qt::AlignLeading)),
      m_change(makeButton(tr("Change Server…"))),
      m_summary(makeSummary()),
      m_layout(new QStackedLayout(this)) {
    m_change->setObjectName(QStringLiteral("change"));
    m_layout->addWidget(m_summary);
    connect(m_change, &QPushButton::clicked, this, [this] { m_model->setEditing(true); });
    connect(m_model.get(), &ServerPaneModel::changed, this, &ServerPane::refresh);
    refresh();
}

ServerPane::~ServerPane() {
    m_model->disconnect(this);
    m_model->disappear();
}

QWidget* ServerPane::makeSummary() {
    auto* summary = new QWidget;
    auto* layout = new QVBoxLayout(summary);
    layout->setContentsMargins({});
    layout->setSpacing(fontMetrics().height());
    layout->addWidget(makeHero());
    layout->addWidget(m_fixUp);
    layout->addWidget(m_download);
    layout->addWidget(m_change, 0, Qt::AlignLeading);
    layout->addStretch();
    return summary;
}

QWidget* ServerPane::makeHero() {
    auto* hero = new QWidget;
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(m_title);
    texts->addWidget(m_subtitle);
    auto* layout = new QHBoxLayout(hero);
    layout->setContentsMargins({});
    layout->setSpacing(fontMetrics().height());
    layout->addWidget(m_symbol, 0, Qt::AlignVCenter);
    layout->addLayout(texts, 1);
    return hero;
}

QWidget* ServerPane::makeFixUp() {
    auto* row = new QWidget;
    auto* text = makePlainLabel(tr("Approve in System Settings to start transcription."));
    QPushButton* button = makeButton(tr("Approve"));
    button->setAccessibleDescription(text->text());
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->setSpacing(fontMetrics().height() * 2 / 3);
    layout->addWidget(new SymbolLabel(QStringLiteral("exclamationmark.triangle.fill"),
                                      fontMetrics().height() * 3 / 2, Tone::warning));
    layout->addWidget(text, 1);
    layout->addWidget(button);
    connect(button, &QPushButton::clicked, m_model.get(), &ServerPaneModel::approve);
    return row;
}

void ServerPane::showEvent(QShowEvent* event) {
    if (!event->spontaneous()) m_model->appear();
    QWidget::showEvent(event);
}

void ServerPane::hideEvent(QHideEvent* event) {
    if (!event->spontaneous()) m_model->disappear();
    QWidget::hideEvent(event);
}

void ServerPane::beginEditing() {
    m_picker = m_makePicker();
    m_layout->addWidget(m_picker);
    m_layout->setCurrentWidget(m_picker);
    setFocusProxy(m_picker);
    if (isVisible()) m_picker->setFocus();
    const auto end = [this] { m_model->setEditing(false); };
    connect(m_picker, &ServerPickerPane::committed, this, end);
    connect(m_picker, &ServerPickerPane::cancelled, this, end);
}

void ServerPane::endEditing() {
    m_layout->setCurrentWidget(m_summary);
    // Later, since its own button is what ends it.
    std::exchange(m_picker, nullptr)->deleteLater();
    setFocusProxy(nullptr);
    if (isVisible()) m_change->setFocus();
}

void ServerPane::refresh() {
    if (m_model->isEditing() && !m_picker) beginEditing();
    if (!m_model->isEditing() && m_picker) endEditing();
    const auto hero = m_model->hero();
    m_symbol->setName(hero.symbol);
    m_title->setText(hero.title);
    m_subtitle->setText(hero.subtitle);
    m_subtitle->setVisible(!hero.subtitle.isEmpty());
    m_fixUp->setVisible(m_model->showsFixUp());
    m_download->setVisible(m_model->showsDownload());
}

}  // namespace quietlark
