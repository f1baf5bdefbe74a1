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
    : m_parts(std::move(parts)),
      m_banner(new StepBanner(OnboardingModel::totalSteps)),
      m_pages(new QStackedWidget),
      m_footer(nullptr),
      m_back(new QPushButton(tr("Back"))),
      m_next(new QPushButton) {
    m_footer = makeFooter();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(fontMetrics().height());
    layout->addWidget(m_banner);
    layout->addWidget(m_pages, 1);
    layout->addWidget(m_footer);
    m_returnKey = std::make_unique<ReturnKey>(*this, *m_next);

    connect(m_parts.done.get(), &DoneStepModel::readinessChanged, this,
            [this] { m_parts.model->setDoneReadiness(m_parts.done->readiness()); });
    connect(m_parts.model.get(), &OnboardingModel::stepChanged, this, &OnboardingView::showStep);
    connect(m_parts.model.get(), &OnboardingModel::changed, this, &OnboardingView::refresh);
    connect(m_parts.model.get(), &OnboardingModel::finished, this, &OnboardingView::finished);
    refresh();
    showStep(m_parts.model->step());
}

OnboardingView::~OnboardingView() {
    m_parts.model->disappear();
    // The pages look at the models until they are gone.
    delete m_pages;
}

QWidget* OnboardingView::makeStep(int step) {
    switch (step) {
        case OnboardingModel::serverStep:
            return makeServerStep();
        case OnboardingModel::permissionsStep:
            return makePermissionsStep();
        case OnboardingModel::hotkeyStep:
            return makePage(tr("Pick your hotkeys"),
                            tr("Click a field and press the combination you want. You can "
                               "change these later in Preferences."),
                            m_parts.makeHotkeyRows());
        case OnboardingModel::doneStep:
            return new DoneStepView(*m_parts.done, m_parts.downloader);
        default:
            return makeWelcomePage();
    }
}

QWidget* OnboardingView::makeServerStep() {
    ServerPickerPane* picker = m_parts.makePicker();
    picker->offerWayBack();
    OnboardingModel* model = m_parts.model.get();
    connect(picker, &ServerPickerPane::wentBack, model, &OnboardingModel::back);
    connect(picker, &ServerPickerPane::committed, model, &OnboardingModel::onServerCommitted);
    return picker;
}

QWidget* OnboardingView::makePermissionsStep() {
    m_permissionRows = new PermissionRowsView(PermissionRowsView::Mark::none);
    m_permissionRows->setRows(m_parts.model->permissionRows());
    return makePage(tr("Grant permissions"),
                    tr("Quietlark needs all three permissions to dictate. You can't continue "
                       "until they're granted."),
                    m_permissionRows);
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
    connect(m_back, &QPushButton::clicked, m_parts.model.get(), &OnboardingModel::back);
    connect(m_next, &QPushButton::clicked, this, &OnboardingView::advance);
    return footer;
}

void OnboardingView::showEvent(QShowEvent* event) {
    if (!event->spontaneous()) {
        m_parts.model->appear();
        focusStep();
    }
    QWidget::showEvent(event);
}

void OnboardingView::hideEvent(QHideEvent* event) {
    if (!event->spontaneous()) m_parts.model->disappear();
    QWidget::hideEvent(event);
}

void OnboardingView::advance() {
    if (m_parts.model->canAdvance()) m_parts.model->next();
}

void OnboardingView::refresh() {
    const bool hasGranted = refreshPermissions();
    m_footer->setVisible(m_parts.model->showsFooter());
    m_back->setVisible(m_parts.model->canGoBack());
    m_next->setText(m_parts.model->nextTitle());
    giveAir(*m_next);
    const bool hasFocus = m_next->hasFocus() || QWidget::hasFocus();
    m_next->setEnabled(m_parts.model->canAdvance());
    if (hasFocus || hasGranted) focusNext();
}

/// Whether the last button to grant something with is gone, and had the focus.
bool OnboardingView::refreshPermissions() {
    if (!m_permissionRows) return false;
    const QWidget* focused = window()->focusWidget();
    const bool isGranting = focused && m_permissionRows->isAncestorOf(focused);
    m_permissionRows->setRows(m_parts.model->permissionRows());
    return isGranting && !m_permissionRows->isAncestorOf(window()->focusWidget());
}

void OnboardingView::showStep(int step) {
    m_banner->setStep(step);
    QWidget*& page = m_steps[static_cast<std::size_t>(step)];
    if (!page) {
        page = makeStep(step);
        m_pages->addWidget(page);
    }
    m_pages->setCurrentWidget(page);
    focusStep();
}

void OnboardingView::focusStep() {
    if (m_parts.model->showsFooter())
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
