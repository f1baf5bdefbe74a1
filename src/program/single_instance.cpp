#include "program/single_instance.h"

#include <cstdlib>
#include <utility>

#include <QCoreApplication>

namespace quietlark {

SingleInstance::SingleInstance(const QDBusConnection& bus, DictationAdaptor::Orders orders,
                               Console& console)
    : m_service(bus, std::move(orders)), m_other(bus), m_console(console) {}

void SingleInstance::start(std::function<void()> onFirst) {
    m_onFirst = std::move(onFirst);
    m_question = m_service.claim([this](SessionBusService::Claim claim) { onClaimed(claim); });
}

void SingleInstance::onClaimed(SessionBusService::Claim claim) {
    if (claim != SessionBusService::Claim::taken) return m_onFirst();
    m_question = m_other.reopen(
        [this](const tl::expected<void, Unavailable>& reopened) { onReopened(reopened); });
}

void SingleInstance::onReopened(const tl::expected<void, Unavailable>& reopened) {
    m_console.complain(reopened
                           ? tr("Quietlark runs already; it has been asked to show its window.")
                           : reopened.error().reason);
    QCoreApplication::exit(reopened ? EXIT_SUCCESS : EXIT_FAILURE);
}

}  // namespace quietlark
