#include "ui/onboarding_view.h"

#include <utility>

#include <QHideEvent>
#include <QPushButton>
#include <QShowEvent>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "ui/done_step_view.h"
#include "ui/page_labels.h"
#include "ui/permission_rows_view.h"
#include "ui/return_key.h"
#include "ui/server_picker_pane.h"
#include "ui/step_banner.h"
#include "ui/symbol_label.h"

namespace quietlark {

namespace {

QWidget* makeWelcomePage() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins({});
    layout->setSpacing(page->fontMetrics().height());
    auto* title = makeTitle(OnboardingView::tr("Welcome to Quietlark"));
    auto* line = makePlainLabel(
        OnboardingView::tr("Dictate with a global hotkey, transcribed on your Mac or by a server "
                           "on your LAN."));
    const int edge = page->fontMetrics().height() * 5;
    layout->addStretch();
    layout->addWidget(
        new SymbolLabel(QStringLiteral("bubble.left"), edge, SymbolLabel::Tone::accent), 0,
        Qt::AlignHCenter);
    for (QLabel* label : {title, line}) {
        label->setAlignment(Qt::AlignCenter);
        layout->addWidget(label);
    }
    layout->addStretch();
    return page;
}

/// A page with a heading, a line below it, and what it is about.
QWidget* makePage(const QString& title, const QString& line, QWidget* content) {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins({});
    layout->setSpacing(page->fontMetrics().height() / 2);
    layout->addWidget(makeTitle(title));
    layout->addWidget(makePlainLabel(line));
    layout->addSpacing(page->fontMetrics().height() / 2);
    layout->addWidget(content);
    layout->addStretch();
    return page;
}

}  // namespace

OnboardingView::OnboardingView(Parts parts)
    : m_model(std::move(parts.model)),
      m_done(std::move(parts.done)),
      m_banner(new StepBanner(OnboardingModel::totalSteps)),
      m_pages(new QStackedWidget),
      m_permissionRows(new PermissionRowsView(PermissionRowsView::Mark::none)),
      m_footer(nullptr),
      m_back(new QPushButton(tr("Back"))),
      m_next(new QPushButton) {
    addPages(parts.picker, parts.hotkeyRows, parts.downloader);
    m_footer = makeFooter();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(fontMetrics().height());
    layout->addWidget(m_banner);
    layout->addWidget(m_pages, 1);
    layout->addWidget(m_footer);
    m_returnKey = std::make_unique<ReturnKey>(*this, *m_next);

    parts.picker->offerWayBack();
    connect(parts.picker, &ServerPickerPane::wentBack, m_model.get(), &OnboardingModel::back);
    connect(parts.picker, &ServerPickerPane::committed, m_model.get(),
            &OnboardingModel::onServerCommitted);
    connect(m_done.get(), &DoneStepModel::readinessChanged, this,
            [this] { m_model->setDoneReadiness(m_done->readiness()); });
    connect(m_model.get(), &OnboardingModel::stepChanged, this, &OnboardingView::showStep);
    connect(m_model.get(), &OnboardingModel::changed, this, &OnboardingView::refresh);
    connect(m_model.get(), &OnboardingModel::finished, this, &OnboardingView::finished);
    refresh();
    showStep(m_model->step());
}

OnboardingView::~OnboardingView() {
    m_model->disappear();
    // The pages look at the models until they are gone.
    delete m_pages;
}

void OnboardingView::addPages(ServerPickerPane* picker, QWidget* hotkeyRows,
                              ModelDownloader& downloader) {
    m_pages->addWidget(makeWelcomePage());
    m_pages->addWidget(picker);
    m_pages->addWidget(makePage(tr("Grant permissions"),
                                tr("Quietlark needs all three permissions to dictate. You can't "
                                   "continue until they're granted."),
                                m_permissionRows));
    m_pages->addWidget(makePage(tr("Pick your hotkeys"),
                                tr("Click a field and press the combination you want. You can "
                                   "change these later in Preferences."),
                                hotkeyRows));
    m_pages->addWidget(new DoneStepView(*m_done, downloader));
}

QWidget* OnboardingView::makeFooter() {
    auto* footer = new QWidget;
    auto* layout = new QHBoxLayout(footer);
    layout->setContentsMargins({});
    layout->addWidget(m_back);
    layout->addStretch();
    layout->addWidget(m_next);
    // Return is the button's own while it has the focus.
    m_back->setAutoDefault(true);
    giveAir(*m_back);
    connect(m_back, &QPushButton::clicked, m_model.get(), &OnboardingModel::back);
    connect(m_next, &QPushButton::clicked, this, &OnboardingView::advance);
    return footer;
}

void OnboardingView::showEvent(QShowEvent* event) {
    if (!event->spontaneous()) {
        m_model->appear();
        focusStep();
    }
    QWidget::showEvent(event);
}

void OnboardingView::hideEvent(QHideEvent* event) {
    if (!event->spontaneous()) m_model->disappear();
    QWidget::hideEvent(event);
}

void OnboardingView::advance() {
    if (m_model->canAdvance()) m_model->next();
}

void OnboardingView::refresh() {
    const QWidget* focused = window()->focusWidget();
    const bool isGranting = focused && m_permissionRows->isAncestorOf(focused);
    m_permissionRows->setRows(m_model->permissionRows());
    m_footer->setVisible(m_model->showsFooter());
    m_back->setVisible(m_model->canGoBack());
    m_next->setText(m_model->nextTitle());
    giveAir(*m_next);
    const bool hasFocus = m_next->hasFocus() || QWidget::hasFocus();
    m_next->setEnabled(m_model->canAdvance());
    // With the last button to grant something with, its focus goes on, too.
    const bool hasGranted = isGranting && !m_permissionRows->isAncestorOf(window()->focusWidget());
    if (hasFocus || hasGranted) focusNext();
}

void OnboardingView::showStep(int step) {
    m_banner->setStep(step);
    m_pages->setCurrentIndex(step);
    focusStep();
}

void OnboardingView::focusStep() {
    if (m_model->showsFooter())
        focusNext();
    else
        m_pages->currentWidget()->setFocus();
}

/// Keeps the focus until there is a way on, rather than leaving it to the way back.
void OnboardingView::focusNext() {
    if (m_next->isEnabled())
        m_next->setFocus();
    else
        setFocus();
}

}  // namespace quietlark
