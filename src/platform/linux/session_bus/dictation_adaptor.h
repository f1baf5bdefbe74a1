#pragma once

#include <functional>

#include <QDBusAbstractAdaptor>
#include <QString>

#include "platform/running_application.h"

namespace quietlark {

/// net.quietlark.Dictation1: dictation for desktops that bind keys themselves. Each method answers
/// how dictation stands afterwards: its state and, after a failure, a sentence.
class DictationAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "net.quietlark.Dictation1")
    Q_PROPERTY(QString State READ state)
    Q_PROPERTY(QString Message READ message)

public:
    using Orders = std::function<DictationReport(DictationOrder)>;

    DictationAdaptor(QObject* object, Orders orders);

    [[nodiscard]] QString state() const { return m_orders(DictationOrder::status).state; }
    [[nodiscard]] QString message() const { return m_orders(DictationOrder::status).message; }

public Q_SLOTS:
    QString Start(QString& message) { return carryOut(DictationOrder::start, message); }
    QString Stop(QString& message) { return carryOut(DictationOrder::stop, message); }
    QString Toggle(QString& message) { return carryOut(DictationOrder::toggle, message); }
    QString Status(QString& message) { return carryOut(DictationOrder::status, message); }

Q_SIGNALS:
    void StateChanged(const QString& state, const QString& message);

private:
    QString carryOut(DictationOrder order, QString& message) const;

    const Orders m_orders;
};

}  // namespace quietlark
