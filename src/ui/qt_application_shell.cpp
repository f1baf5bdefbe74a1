#include "ui/qt_application_shell.h"

#include <utility>

#include <QCoreApplication>
#include <QPushButton>

namespace quietlark {

void QtApplicationShell::show(const Alert& alert, std::function<void()> onClosed) {
    const auto icon =
        alert.style == Alert::Style::warning ? QMessageBox::Warning : QMessageBox::Information;
    QMessageBox& box = makeBox(icon, alert.title, alert.text);
    box.addButton(alert.button, QMessageBox::AcceptRole);
    if (onClosed) QObject::connect(&box, &QMessageBox::finished, &box, onClosed);
    bringUp(box);
}

void QtApplicationShell::ask(const Confirmation& question,
                             std::function<void(bool confirmed)> onAnswer) {
    QMessageBox& box = makeBox(QMessageBox::Warning, question.title, question.text);
    const auto* confirm = box.addButton(question.destructiveButton, QMessageBox::DestructiveRole);
    QPushButton* cancel = box.addButton(question.cancelButton, QMessageBox::RejectRole);
    box.setDefaultButton(cancel);
    box.setEscapeButton(cancel);
    QObject::connect(&box, &QMessageBox::finished, &box,
                     [&box, confirm, onAnswer = std::move(onAnswer)] {
                         onAnswer(box.clickedButton() == confirm);
                     });
    bringUp(box);
}

QMessageBox& QtApplicationShell::makeBox(QMessageBox::Icon icon, const QString& title,
                                         const QString& text) {
    // Whoever waits for the one before is told that it has gone; one that has gone already may not
    // have been destroyed yet.
    if (m_alert && m_alert->isVisible()) m_alert->reject();
    m_alert = new QMessageBox(icon, title, text);
    m_alert->setTextFormat(Qt::PlainText);
    m_alert->setAttribute(Qt::WA_DeleteOnClose);
    m_alert->setWindowModality(Qt::ApplicationModal);
    return *m_alert;
}

void QtApplicationShell::bringUp(QMessageBox& box) {
    box.show();
    box.raise();
    box.activateWindow();
}

bool QtApplicationShell::isAlertVisible() const {
    return m_alert && m_alert->isVisible();
}

void QtApplicationShell::terminate() {
    QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit,
                              Qt::QueuedConnection);
}

}  // namespace quietlark
