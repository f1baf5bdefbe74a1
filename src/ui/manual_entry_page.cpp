#include "ui/manual_entry_page.h"

#include <QAbstractButton>
#include <QHideEvent>
#include <QLineEdit>
#include <QShowEvent>
#include <QStyle>
#include <QVBoxLayout>

#include "picker/server_picker_model.h"
#include "ui/page_labels.h"
#include "ui/probe_row.h"

namespace quietlark {

namespace {

/// Longer than any address; keeps a paste gone wrong out of the field.
constexpr int maxAddressLength = 1000;

QLabel* makeExamples() {
    // Isolated, as addresses read from left to right in every language.
    const QString examples = ManualEntryPage::tr("For example %1, %2 or %3")
                                 .arg(QStringLiteral("\u2066gpu-box:8001\u2069"),
                                      QStringLiteral("\u2066192.168.1.20:8001\u2069"),
                                      QStringLiteral("\u2066https://speech.example.com:443\u2069"));
    QLabel* label = makePlainLabel(examples);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 0.9);
    label->setFont(font);
    return label;
}

}  // namespace

ManualEntryPage::ManualEntryPage(ServerPickerModel& model)
    : m_model(model), m_address(new QLineEdit), m_examples(makeExamples()), m_probe(new ProbeRow) {
    const QString heading = tr("Enter a server address");
    m_address->setPlaceholderText(tr("host:port"));
    m_address->setAccessibleName(heading);
    m_address->setMaxLength(maxAddressLength);
    m_address->setClearButtonEnabled(true);
    // The toolkit does not name it.
    for (auto* clear : m_address->findChildren<QAbstractButton*>())
        clear->setAccessibleName(tr("Clear"));
    m_address->setInputMethodHints(Qt::ImhUrlCharactersOnly | Qt::ImhNoPredictiveText |
                                   Qt::ImhNoAutoUppercase);
    setFocusProxy(m_address);
    alignAddress();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(makeHeading(heading));
    layout->addWidget(m_address);
    layout->addWidget(m_examples);
    layout->addWidget(m_probe);
    layout->addStretch();

    connect(m_address, &QLineEdit::textChanged, &m_model, &ServerPickerModel::setManualHostPort);
    refresh();
}

void ManualEntryPage::refresh() {
    // Set anew, the text would lose its cursor and its undo history.
    if (m_address->text() != m_model.manualHostPort()) m_address->setText(m_model.manualHostPort());
    m_probe->setKind(m_model.manualProbeIsUpToDate() ? m_model.manualProbe().kind
                                                     : ProbeState::Case::idle);
    describeAddress();
}

/// At the side where the page's lines begin. A field goes by its text, which in a mirrored window
/// still reads from left to right.
void ManualEntryPage::alignAddress() {
    m_address->setAlignment(QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft) |
                            Qt::AlignAbsolute | Qt::AlignVCenter);
}

/// The user is still in the address field: there a screen reader tells what becomes of the address.
void ManualEntryPage::describeAddress() {
    const QString news = m_probe->text();
    const QString description = news.isEmpty() ? m_examples->text() : news;
    // Set to what it is, it would be told again.
    if (m_address->accessibleDescription() != description)
        m_address->setAccessibleDescription(description);
}

void ManualEntryPage::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LayoutDirectionChange) alignAddress();
    QWidget::changeEvent(event);
}

void ManualEntryPage::showEvent(QShowEvent* event) {
    if (!event->spontaneous()) m_model.onManualEntryAppear();
    QWidget::showEvent(event);
}

void ManualEntryPage::hideEvent(QHideEvent* event) {
    if (!event->spontaneous()) m_model.onManualEntryDisappear();
    QWidget::hideEvent(event);
}

}  // namespace quietlark
