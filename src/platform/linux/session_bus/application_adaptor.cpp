#include "platform/linux/session_bus/application_adaptor.h"

namespace quietlark {

void ApplicationAdaptor::Activate(const QVariantMap&) {
    m_onReopen();
}

void ApplicationAdaptor::Open(const QStringList&, const QVariantMap&) {
    m_onReopen();
}

void ApplicationAdaptor::ActivateAction(const QString&, const QVariantList&, const QVariantMap&) {}

}  // namespace quietlark
