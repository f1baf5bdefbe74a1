#include "platform/linux/avahi/avahi_local_host_name.h"

#include <chrono>
#include <memory>
#include <utility>

#include <QSysInfo>

namespace quietlark {

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 1s;

std::optional<QString> nameOrNothing(const QString& text) {
    const QString name = text.trimmed();
    return name.isEmpty() ? std::nullopt : std::optional(name);
}

std::optional<QString> kernelsName() {
    return nameOrNothing(QSysInfo::machineHostName().section(u'.', 0, 0));
}

/// One question; it ends with this object.
class Question final : public QObject {
public:
    Question(AvahiDaemon& daemon, Scheduler& scheduler, LocalHostName::Handler onAnswer)
        : m_daemon(daemon), m_onAnswer(std::move(onAnswer)) {
        connect(&m_daemon, &AvahiDaemon::stateChanged, this, &Question::follow);
        scheduler.after(patience, this, [this] { answer(kernelsName()); });
        // Later, as nothing may be answered before the question returns.
        scheduler.after(0ms, this, [this] { follow(); });
    }

private:
    void follow() {
        switch (m_daemon.state()) {
            case AvahiDaemon::State::Unknown:
                return;
            case AvahiDaemon::State::NoBus:
            case AvahiDaemon::State::Absent:
                return answer(kernelsName());
            case AvahiDaemon::State::Running:
                return ask();
        }
    }

    void ask() {
        m_daemon.call(QStringLiteral("/"), QStringLiteral("org.freedesktop.Avahi.Server"),
                      QStringLiteral("GetHostName"), {}, this, [this](const QDBusMessage& reply) {
                          const auto name =
                              nameOrNothing(reply.type() == QDBusMessage::ReplyMessage
                                                ? reply.arguments().value(0).toString()
                                                : QString());
                          answer(name ? name : kernelsName());
                      });
    }

    void answer(const std::optional<QString>& name) {
        if (const auto onAnswer = std::exchange(m_onAnswer, nullptr)) onAnswer(name);
    }

    AvahiDaemon& m_daemon;
    LocalHostName::Handler m_onAnswer;
};

}  // namespace

AvahiLocalHostName::AvahiLocalHostName(AvahiDaemon& daemon, Scheduler& scheduler)
    : m_daemon(daemon), m_scheduler(scheduler) {}

Cancellable AvahiLocalHostName::lookUp(Handler onAnswer) {
    auto question = std::make_shared<Question>(m_daemon, m_scheduler, std::move(onAnswer));
    return Cancellable([question]() mutable { question.reset(); });
}

}  // namespace quietlark
