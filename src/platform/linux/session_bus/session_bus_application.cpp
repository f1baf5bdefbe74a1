#include "platform/linux/session_bus/session_bus_application.h"

#include <utility>

#include <QCoreApplication>
#include <QDBusError>

#include "platform/linux/session_bus/pending_answer.h"
#include "platform/linux/session_bus/session_bus_names.h"

namespace quietlark {

namespace {

class Sentences {
    Q_DECLARE_TR_FUNCTIONS(SessionBusApplication)

public:
    static QString noBus() {
        return tr("There is no session bus to reach Quietlark on; run this within the desktop.");
    }
    static QString notRunning() { return tr("Quietlark is not running; start it with: quietlark"); }
    static QString noAnswer() { return tr("Quietlark is running but does not answer."); }
};

// Which Qt has no number for.
const QString nameHasNoOwner = QStringLiteral("org.freedesktop.DBus.Error.NameHasNoOwner");

QDBusMessage question(const QString& interface, const QString& method) {
    auto message =
        QDBusMessage::createMethodCall(session_bus::service, session_bus::path, interface, method);
    // A service file that starts the program is for desktops; a question is for one that runs.
    message.setAutoStartService(false);
    return message;
}

QString methodFor(DictationOrder order) {
    switch (order) {
        case DictationOrder::start:
            return QStringLiteral("Start");
        case DictationOrder::stop:
            return QStringLiteral("Stop");
        case DictationOrder::toggle:
            return QStringLiteral("Toggle");
        case DictationOrder::status:
            break;
    }
    return QStringLiteral("Status");
}

Unavailable failure(const QDBusMessage& reply) {
    const QString error = reply.errorName();
    const auto is = [&error](QDBusError::ErrorType type) {
        return error == QDBusError::errorString(type);
    };
    if (is(QDBusError::ServiceUnknown) || error == nameHasNoOwner) return {Sentences::notRunning()};
    if (is(QDBusError::Disconnected)) return {Sentences::noBus()};
    return {Sentences::noAnswer()};
}

}  // namespace

Cancellable SessionBusApplication::reopen(
    std::function<void(const tl::expected<void, Unavailable>&)> onDone) {
    QDBusMessage activate = question(session_bus::applicationInterface, QStringLiteral("Activate"));
    activate << QVariantMap();
    return ask(m_bus, activate, [onDone = std::move(onDone)](const QDBusMessage& reply) {
        if (reply.type() == QDBusMessage::ReplyMessage) return onDone({});
        onDone(tl::unexpected(failure(reply)));
    });
}

Cancellable SessionBusApplication::order(DictationOrder order,
                                         std::function<void(const Answer&)> onAnswer) {
    return ask(m_bus, question(session_bus::dictationInterface, methodFor(order)),
               [onAnswer = std::move(onAnswer)](const QDBusMessage& reply) {
                   const QVariantList values = reply.arguments();
                   if (reply.type() != QDBusMessage::ReplyMessage || values.size() != 2)
                       return onAnswer(tl::unexpected(failure(reply)));
                   onAnswer(DictationReport{values[0].toString(), values[1].toString()});
               });
}

}  // namespace quietlark
