#pragma once

#include <functional>
#include <optional>

#include <QCoreApplication>

#include "platform/privacy.h"
#include "platform/scheduler.h"
#include "platform/settings_panes.h"

namespace quietlark {

/// The four grants that dictation needs: reads them, asks for them, and shows the user where to
/// give them. Remembers nothing. Main thread.
class Permissions {
    Q_DECLARE_TR_FUNCTIONS(Permissions)

public:
    struct Status {
        bool microphone = false;       ///< recording is allowed
        bool inputMonitoring = false;  ///< keys that go to other applications can be observed
        bool accessibility = false;    ///< keys can be typed into other applications
        bool localNetwork = false;     ///< servers nearby can be looked for and reached

        [[nodiscard]] bool allGranted() const {
            return microphone && inputMonitoring && accessibility && localNetwork;
        }
        bool operator==(const Status&) const = default;
    };

    /// For each grant that is missing one sentence for the user, which says what to do about it;
    /// nothing for a grant that is given.
    struct Explanations {
        std::optional<QString> microphone;
        std::optional<QString> inputMonitoring;
        std::optional<QString> accessibility;
        std::optional<QString> localNetwork;
    };

    /// What LocalNetworkProbe has of the same names. The program has one probe, which the first
    /// call creates: its browse is what makes a system ask the user.
    struct LocalNetwork {
        std::function<bool()> granted;
        std::function<std::optional<Unavailable>()> unavailable = [] { return std::nullopt; };
    };

    Permissions(Privacy& privacy, SettingsPanes& panes, Scheduler& scheduler,
                LocalNetwork localNetwork);

    /// Read anew each time.
    [[nodiscard]] Status status() const;

    [[nodiscard]] Explanations explanations() const;

    /// Asks the system for each grant that `status` lacks, in the order of the fields, and starts
    /// the local network probe in any case. Shows no pane. Answers `status` unchanged.
    Status requestMissing(const Status& status);

    /// Asks for the microphone. `completion`, if there is one, runs on the main thread with whether
    /// it is granted, never before the call returns.
    void requestMic(std::function<void(bool granted)> completion = {});

    /// Asks for the microphone, and shows its pane when it was not granted before nor is now.
    void grantMic();

    /// Asks for input monitoring; shows its pane when it is not granted.
    void grantInputMonitoring();

    /// Asks for accessibility; shows its pane when it is not granted.
    void grantAccessibility();

    /// Shows the pane: there is nothing to ask.
    void grantLocalNetwork();

private:
    [[nodiscard]] bool has(PrivacyGrant grant) const;
    [[nodiscard]] std::optional<QString> explain(PrivacyGrant grant) const;

    Privacy& m_privacy;
    SettingsPanes& m_panes;
    Scheduler& m_scheduler;
    const LocalNetwork m_localNetwork;
};

}  // namespace quietlark
