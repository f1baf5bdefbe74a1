#pragma once

#include <deque>
#include <map>

#include <QObject>
#include <QString>
#include <QTimer>
#include <QVariantList>
#include <tl/expected.hpp>

#include "platform/linux/systemd/systemd_manager.h"
#include "platform/registered_service.h"

namespace quietlark {

/// Registers or unregisters one unit, once. Main thread.
class SystemdUnitChange final : public QObject {
    Q_OBJECT

public:
    enum class Kind {
        Register,    ///< enable, start; also what was given up after many failures
        Unregister,  ///< stop, disable; also what does not stop
    };

    /// `onFinished` runs once, never before begin() returns, and may not destroy the change at
    /// once. What was done before a failure, or after it, stays done.
    SystemdUnitChange(SystemdManager& manager, QString unit, Kind kind,
                      RegisteredService::Done onFinished);

    void begin() { takeNextStep(); }

private:
    enum class OnFailure {
        Stop,
        TellInTheEnd,  ///< when the other steps are done
        Ignore
    };
    struct Step {
        QString method;
        QVariantList arguments = {};
        bool queuesJob = false;  ///< done only when the job that it answers has ended
        OnFailure onFailure = OnFailure::Stop;
    };

    static std::deque<Step> stepsFor(Kind kind, const QString& unit);

    void takeNextStep();
    void onReply(const QDBusMessage& reply);
    void awaitJob(const QString& job);
    void onJobRemoved(const QString& job, const QString& result);
    void finishJob(const QString& result);
    void onManagerGone();
    void onJobUnfinished();
    void forgetJob();
    void finish(const tl::expected<void, ServiceError>& result);
    void fail(const QString& sentence);

    SystemdManager& m_manager;
    const QString m_unit;
    const RegisteredService::Done m_onFinished;
    std::deque<Step> m_steps;  ///< that are left
    Step m_step;               ///< the one under way
    tl::expected<void, ServiceError> m_result;
    QString m_job;                           ///< that is awaited
    std::map<QString, QString> m_endedJobs;  ///< and their results, while ours has no name yet
    QTimer m_jobTimer;
};

}  // namespace quietlark
