#pragma once

#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <QObject>

#include "platform/scheduler.h"
#include "platform/service_browser_backend.h"

namespace quietlark {

/// A local network in memory. What the test does to it is told to every browse at once; answers go
/// through the scheduler, so nothing is answered before time passes there.
class FakeServiceBrowser final : public ServiceBrowserBackend {
public:
    explicit FakeServiceBrowser(Scheduler& scheduler) : m_scheduler(scheduler) {}

    // What happens on the network. Every service is of the type that is asked for.

    /// A service appears, or says something else from now on.
    void publish(const QString& name, ResolvedService says) {
        const auto known = m_services.find(name);
        const bool hasMoved =
            known != m_services.end() && known->second &&
            (known->second->hostName != says.hostName || known->second->port != says.port);
        const bool isKnown = known != m_services.end() && !hasMoved;
        if (hasMoved) withdraw(name);
        m_services[name] = says;
        if (isKnown) {
            reportResolved(name, says);
        } else {
            appear(name);
        }
    }

    /// A service appears that never answers.
    void publishSilent(const QString& name) {
        m_services[name] = std::nullopt;
        appear(name);
    }

    void withdraw(const QString& name) {
        m_services.erase(name);
        for (const auto& browse : browses())
            disappear(*browse, name);
    }

    /// The system's own browser ends; one may be started again.
    void stopDaemon() {
        m_daemonRuns = false;
        for (const auto& browse : browses()) {
            for (const QString& name : namesFoundBy(*browse))
                disappear(*browse, name);
        }
        reportState(stateNow());
    }
    void startDaemon() {
        m_daemonRuns = true;
        for (const auto& browse : browses())
            begin(browse);
    }

    // Single reports, for what a network does seldom.

    void reportState(const BrowseState& state) {
        for (const auto& browse : browses()) {
            if (browse->handlers.stateChanged && !browse->hasEnded)
                browse->handlers.stateChanged(state);
        }
    }
    void reportState(BrowseState::Kind kind) { reportState(BrowseState{kind, {}}); }

    /// The service of that name answers once more, whatever it has answered before.
    void reportResolved(const QString& name, const ResolvedService& answer) {
        const auto resolutionsNow = m_resolutions;
        for (const auto& [id, resolution] : resolutionsNow) {
            if (resolution->name != name || !m_resolutions.contains(id)) continue;
            resolution->isAnswered = true;
            resolution->onAnswer(answer);
        }
    }

    /// A service that no browse has found is reported to be gone.
    void reportRemoved(const QString& name) {
        for (const auto& browse : browses())
            browse->handlers.removed({m_nextId++, name, browse->query});
    }

    [[nodiscard]] std::size_t browseCount() const { return m_browses.size(); }
    [[nodiscard]] std::size_t resolutionCount() const { return m_resolutions.size(); }

    /// What the latest browse looks for.
    [[nodiscard]] const ServiceQuery& lastQuery() const { return m_lastQuery; }

    // ServiceBrowserBackend

    [[nodiscard]] Cancellable browse(ServiceQuery query, BrowseHandlers handlers) override {
        m_lastQuery = query;
        const auto id = m_nextId++;
        m_browses[id] =
            std::make_shared<Browse>(Browse{std::move(query), std::move(handlers), {}, false});
        m_scheduler.after({}, &m_context, [this, id] {
            if (m_browses.contains(id)) begin(m_browses[id]);
        });
        return Cancellable([this, id] {
            // Whoever is reporting to it at this moment holds it, and stops.
            m_browses[id]->hasEnded = true;
            m_browses.erase(id);
        });
    }

    [[nodiscard]] Cancellable resolve(const FoundService& service,
                                      std::chrono::milliseconds timeout,
                                      ResolveHandler onAnswer) override {
        const auto id = m_nextId++;
        m_resolutions[id] =
            std::make_shared<Resolution>(Resolution{service.name, std::move(onAnswer), false});
        m_scheduler.after({}, &m_context, [this, id, name = service.name] {
            if (m_resolutions.contains(id) && m_services.contains(name) && m_services[name])
                answer(id, *m_services[name]);
        });
        m_scheduler.after(timeout, &m_context, [this, id] {
            if (!m_resolutions.contains(id) || m_resolutions[id]->isAnswered) return;
            answer(id, tl::unexpected(ResolveFailure::TimedOut));
        });
        return Cancellable([this, id] { m_resolutions.erase(id); });
    }

private:
    struct Browse {
        ServiceQuery query;
        BrowseHandlers handlers;
        std::map<QString, FoundService> found;
        bool hasEnded;
    };
    struct Resolution {
        QString name;
        ResolveHandler onAnswer;
        bool isAnswered;
    };

    // Copies, as a handler may end what it hears from.
    std::vector<std::shared_ptr<Browse>> browses() const {
        std::vector<std::shared_ptr<Browse>> all;
        for (const auto& [id, browse] : m_browses)
            all.push_back(browse);
        return all;
    }

    static std::vector<QString> namesFoundBy(const Browse& browse) {
        std::vector<QString> names;
        for (const auto& [name, service] : browse.found)
            names.push_back(name);
        return names;
    }

    BrowseState stateNow() const {
        if (m_daemonRuns) return {BrowseState::Kind::Ready, {}};
        return {BrowseState::Kind::Waiting, QStringLiteral("Start the daemon.")};
    }

    void begin(std::shared_ptr<Browse> browse) {
        if (browse->handlers.stateChanged) browse->handlers.stateChanged(stateNow());
        if (!m_daemonRuns) return;
        for (const auto& [name, says] : m_services)
            appear(*browse, name);
    }

    void appear(const QString& name) {
        if (!m_daemonRuns) return;
        for (const auto& browse : browses())
            appear(*browse, name);
    }

    void appear(Browse& browse, const QString& name) {
        if (browse.hasEnded) return;
        const auto [found, isNew] =
            browse.found.try_emplace(name, FoundService{m_nextId, name, browse.query});
        if (!isNew) return;
        ++m_nextId;
        if (browse.handlers.found) browse.handlers.found(found->second);
    }

    static void disappear(Browse& browse, const QString& name) {
        if (browse.hasEnded) return;
        const auto gone = browse.found.extract(name);
        if (gone && browse.handlers.removed) browse.handlers.removed(gone.mapped());
    }

    void answer(quint64 id, const tl::expected<ResolvedService, ResolveFailure>& says) {
        const auto resolution = m_resolutions[id];
        resolution->isAnswered = true;
        resolution->onAnswer(says);
    }

    Scheduler& m_scheduler;
    std::map<QString, std::optional<ResolvedService>> m_services;
    std::map<quint64, std::shared_ptr<Browse>> m_browses;
    std::map<quint64, std::shared_ptr<Resolution>> m_resolutions;
    ServiceQuery m_lastQuery;
    bool m_daemonRuns = true;
    quint64 m_nextId = 1;
    QObject m_context;
};

}  // namespace quietlark
