#include "platform/linux/session_bus/dictation_adaptor.h"

#include <utility>

namespace quietlark {

DictationAdaptor::DictationAdaptor(QObject* object, Orders orders)
    : QDBusAbstractAdaptor(object), m_orders(std::move(orders)) {}

QString DictationAdaptor::carryOut(DictationOrder order, QString& message) const {
    const DictationReport report = m_orders(order);
    message = report.message;
    return report.state;
}

}  // namespace quietlark
