#pragma once

#include <functional>

#include <QDBusConnection>
#include <QObject>

#include "platform/cancellable.h"
#include "platform/linux/session_bus/dictation_adaptor.h"

namespace quietlark {

/// This process as the one that answers for the program in the user's session. Main thread.
class SessionBusService final : public QObject {
    Q_OBJECT

public:
    enum class Claim {
        owned,  ///< the name is ours until the process ends
        taken,  ///< another process has it
        noBus,  ///< there is no session bus, so nobody can ask for anything
    };

    /// `orders` carries out what others tell dictation to do.
    SessionBusService(QDBusConnection bus, DictationAdaptor::Orders orders);

    /// Asks for the program's name. `onAnswer` runs once, never before the call returns.
    [[nodiscard]] Cancellable claim(std::function<void(Claim)> onAnswer);

    /// Tells whoever listens that dictation stands otherwise.
    void announce(const DictationReport& report);

Q_SIGNALS:
    /// The user has opened the program once more.
    void reopenRequested();

private:
    QDBusConnection m_bus;
    QObject m_object;
    DictationAdaptor* m_dictation;
};

}  // namespace quietlark
