#pragma once

#include <QString>

namespace quietlark {

/// Whether the chosen server can transcribe, as the last step of the onboarding sees it.
struct DoneReadiness {
    enum class Case {
        checking,          ///< nothing measured yet
        connecting,        ///< the server is being reached
        downloading,       ///< the local server's model is not there yet
        awaitingApproval,  ///< only the user can let the local server run
        ready,             ///< a server has answered
        failed,            ///< a remote server has not
        deferred,          ///< the user chooses a server another time
    };

    Case kind = Case::checking;
    QString message = {};  ///< for the user; of `connecting` and `failed`

    /// There is nothing more to wait for.
    [[nodiscard]] bool mayFinish() const { return kind == Case::ready || kind == Case::deferred; }

    bool operator==(const DoneReadiness&) const = default;
};

}  // namespace quietlark
