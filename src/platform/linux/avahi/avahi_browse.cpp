#include "platform/linux/avahi/avahi_browse.h"

#include <algorithm>
#include <chrono>

#include <QPointer>

#include "platform/linux/avahi/avahi_arguments.h"

namespace quietlark {

namespace {

using namespace std::chrono_literals;

// A daemon that has just refused needs no hurry.
constexpr auto retryInterval = 5s;

}  // namespace

AvahiBrowse::AvahiBrowse(AvahiDaemon& daemon, Scheduler& scheduler, ServiceQuery query,
                         Handlers handlers, std::function<quint64()> newIdentity)
    : m_daemon(daemon),
      m_scheduler(scheduler),
      m_query(std::move(query)),
      m_handlers(std::move(handlers)),
      m_newIdentity(std::move(newIdentity)) {
    connect(&m_daemon, &AvahiDaemon::stateChanged, this, &AvahiBrowse::follow);
}

void AvahiBrowse::follow() {
    const QPointer<AvahiBrowse> self(this);
    switch (m_daemon.state()) {
        case AvahiDaemon::State::Unknown:
            report(BrowseState::Kind::Setup);
            return;
        case AvahiDaemon::State::Running:
            begin();
            return;
        case AvahiDaemon::State::NoBus:
        case AvahiDaemon::State::Absent:
            m_browser.reset();
            removeAll();
            if (self) report(BrowseState::Kind::Waiting, m_daemon.reason());
            return;
    }
}

void AvahiBrowse::begin() {
    if (m_browser) return;
    m_browser = std::make_unique<AvahiObject>(
        m_daemon, AvahiObject::Kind::ServiceBrowser,
        QVariantList{avahi::anyInterface, avahi::anyProtocol, avahi::withoutFinalDot(m_query.type),
                     avahi::withoutFinalDot(m_query.domain), avahi::noFlags},
        AvahiObject::Handlers{
            .started = [this] { report(BrowseState::Kind::Ready); },
            .refused = [this] { fail(); },
            .signalled = [this](const QDBusMessage& signal) { receive(signal); }});
}

void AvahiBrowse::fail() {
    m_browser.reset();
    m_scheduler.after(retryInterval, this, [this] {
        if (m_daemon.state() == AvahiDaemon::State::Running) begin();
    });
    const QPointer<AvahiBrowse> self(this);
    removeAll();
    if (!self) return;
    report(BrowseState::Kind::Failed,
           tr("The Avahi service refuses to look for servers on the local network: restart "
              "avahi-daemon."));
}

void AvahiBrowse::receive(const QDBusMessage& signal) {
    if (signal.member() == QStringLiteral("Failure")) return fail();
    if (signal.signature() != QStringLiteral("iisssu")) return;
    const auto arguments = signal.arguments();
    const std::pair way{arguments[0].toInt(), arguments[1].toInt()};
    const auto name = arguments[2].toString();
    if (signal.member() == QStringLiteral("ItemNew")) {
        appear(name, way);
    } else if (signal.member() == QStringLiteral("ItemRemove")) {
        disappear(name, way);
    }
}

void AvahiBrowse::appear(const QString& name, std::pair<int, int> way) {
    if (const auto known = m_services.find(name); known != m_services.end()) {
        known->second.ways.insert(way);
        return;
    }
    if (m_services.size() >= maxServices) return;
    const FoundService service{m_newIdentity(), name, m_query};
    m_services.emplace(name, Seen{service, {way}});
    const auto found = m_handlers.found;
    if (found) found(service);
}

void AvahiBrowse::disappear(const QString& name, std::pair<int, int> way) {
    const auto known = m_services.find(name);
    if (known == m_services.end()) return;
    known->second.ways.erase(way);
    if (!known->second.ways.empty()) return;
    const auto gone = m_services.extract(known);
    const auto removed = m_handlers.removed;
    if (removed) removed(gone.mapped().service);
}

void AvahiBrowse::renew(quint64 identity) {
    const auto known = std::find_if(m_services.begin(), m_services.end(), [&](const auto& seen) {
        return seen.second.service.identity == identity;
    });
    if (known == m_services.end()) return;
    const FoundService before = known->second.service;
    FoundService& current = known->second.service;
    current.identity = m_newIdentity();
    const FoundService after = current;
    const QPointer<AvahiBrowse> self(this);
    const auto handlers = m_handlers;
    if (handlers.removed) handlers.removed(before);
    if (self && handlers.found) handlers.found(after);
}

void AvahiBrowse::removeAll() {
    const QPointer<AvahiBrowse> self(this);
    const auto removed = m_handlers.removed;
    const auto gone = std::exchange(m_services, {});
    for (const auto& [name, seen] : gone) {
        if (self && removed) removed(seen.service);
    }
}

void AvahiBrowse::report(BrowseState::Kind kind, const QString& reason) {
    const auto stateChanged = m_handlers.stateChanged;
    if (stateChanged) stateChanged({kind, reason});
}

}  // namespace quietlark
