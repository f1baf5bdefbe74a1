#include "platform/linux/systemd/systemd_unit_change.h"

#include <utility>

#include <QDBusObjectPath>

#include "platform/linux/systemd/systemd_errors.h"

namespace quietlark {

std::deque<SystemdUnitChange::Step> SystemdUnitChange::stepsFor(Kind kind, const QString& unit) {
    const QStringList units{unit};
    constexpr bool untilReboot = false;
    constexpr bool replacingOtherLinks = false;
    const QString mode = QStringLiteral("replace");
    // The manager knows what another unit wants only after it has read the links anew.
    const Step reload{QStringLiteral("Reload"), {}};
    if (kind == Kind::Register) {
        return {
            {QStringLiteral("EnableUnitFiles"), {units, untilReboot, replacingOtherLinks}},
            reload,
            // What failed too often would be refused for a while, although its cause may be gone;
            // managers before systemd 255 have forgotten that with the reload.
            {.method = QStringLiteral("ResetFailedUnit"),
             .arguments = {unit},
             .onFailure = OnFailure::Ignore},
            {.method = QStringLiteral("StartUnit"), .arguments = {unit, mode}, .queuesJob = true}};
    }
    return {{.method = QStringLiteral("StopUnit"),
             .arguments = {unit, mode},
             .queuesJob = true,
             .onFailure = OnFailure::TellInTheEnd},
            {QStringLiteral("DisableUnitFiles"), {units, untilReboot}},
            reload};
}

SystemdUnitChange::SystemdUnitChange(SystemdManager& manager, QString unit, Kind kind,
                                     RegisteredService::Done onFinished)
    : m_manager(manager),
      m_unit(std::move(unit)),
      m_onFinished(std::move(onFinished)),
      m_steps(stepsFor(kind, m_unit)) {
    m_jobTimer.setSingleShot(true);
    connect(&m_jobTimer, &QTimer::timeout, this, &SystemdUnitChange::onJobUnfinished);
    connect(&manager, &SystemdManager::jobRemoved, this, &SystemdUnitChange::onJobRemoved);
    connect(&manager, &SystemdManager::gone, this, &SystemdUnitChange::onManagerGone);
}

void SystemdUnitChange::takeNextStep() {
    if (m_steps.empty()) return finish(m_result);
    m_step = std::move(m_steps.front());
    m_steps.pop_front();
    m_endedJobs.clear();
    m_manager.call(m_step.method, m_step.arguments, this,
                   [this](const QDBusMessage& reply) { onReply(reply); });
}

void SystemdUnitChange::onReply(const QDBusMessage& reply) {
    if (reply.type() == QDBusMessage::ErrorMessage) {
        const bool wasNeverLoaded =
            reply.errorName() == QLatin1String("org.freedesktop.systemd1.NoSuchUnit");
        const bool isStop = m_step.method == QLatin1String("StopUnit");
        if (!(isStop && wasNeverLoaded)) return fail(sentenceForError(m_unit, reply));
    } else if (m_step.queuesJob) {
        return awaitJob(reply.arguments().value(0).value<QDBusObjectPath>().path());
    }
    takeNextStep();
}

void SystemdUnitChange::awaitJob(const QString& job) {
    if (const auto ended = m_endedJobs.find(job); ended != m_endedJobs.end())
        return finishJob(ended->second);
    m_job = job;
    m_jobTimer.start(m_manager.patience());
}

void SystemdUnitChange::onJobRemoved(const QString& job, const QString& result) {
    if (m_job.isEmpty()) {
        m_endedJobs[job] = result;
    } else if (job == m_job) {
        finishJob(result);
    }
}

void SystemdUnitChange::finishJob(const QString& result) {
    forgetJob();
    if (result != QLatin1String("done")) return fail(sentenceForJobResult(m_unit, result));
    takeNextStep();
}

// A request that is under way ends by itself, with an error.
void SystemdUnitChange::onManagerGone() {
    if (!m_job.isEmpty()) finish(tl::unexpected(ServiceError{sentenceForLostManager()}));
}

void SystemdUnitChange::onJobUnfinished() {
    forgetJob();
    fail(sentenceForUnfinishedJob(m_unit));
}

void SystemdUnitChange::fail(const QString& sentence) {
    if (m_step.onFailure == OnFailure::Ignore) return takeNextStep();
    m_result = tl::unexpected(ServiceError{sentence});
    if (m_step.onFailure == OnFailure::TellInTheEnd) return takeNextStep();
    finish(m_result);
}

void SystemdUnitChange::forgetJob() {
    m_jobTimer.stop();
    m_job.clear();
}

void SystemdUnitChange::finish(const tl::expected<void, ServiceError>& result) {
    forgetJob();
    m_onFinished(result);
}

}  // namespace quietlark
