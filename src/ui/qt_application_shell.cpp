#include "ui/qt_application_shell.h"

#include <QCoreApplication>
#include <QMessageBox>

namespace quietlark {

void QtApplicationShell::show(const Alert& alert) {
    delete m_alert;
    const auto icon =
        alert.style == Alert::Style::warning ? QMessageBox::Warning : QMessageBox::Information;
    m_alert = new QMessageBox(icon, alert.title, alert.text);
    m_alert->setTextFormat(Qt::PlainText);
    m_alert->addButton(alert.button, QMessageBox::AcceptRole);
    m_alert->setAttribute(Qt::WA_DeleteOnClose);
    m_alert->setWindowModality(Qt::ApplicationModal);
    m_alert->show();
    m_alert->raise();
    m_alert->activateWindow();
}

void QtApplicationShell::terminate() {
    QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit,
                              Qt::QueuedConnection);
}

}  // namespace quietlark
