#pragma once

#include <chrono>
#include <memory>
#include <optional>

#include <QObject>
#include <QString>

#include "platform/scheduler.h"
#include "screens/done_readiness.h"
#include "servers/hardware_profile.h"
#include "state/app_state.h"
#include "transcription/endpoint_file.h"
#include "transcription/server_resolver.h"

namespace quietlark {

/// The last step of the onboarding: waits, while it is shown, until the chosen server can
/// transcribe. Main thread.
class DoneStepModel final : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds probeInterval{1500};
    static constexpr std::chrono::milliseconds rtfInterval{1000};
    static constexpr std::chrono::milliseconds remoteTimeout{3000};
    static constexpr std::chrono::milliseconds localTimeout{2000};

    /// What the step shows; what is empty or false is not there.
    struct Content {
        bool isBusy = false;
        QString symbol = {};
        QString title = {};
        QString text = {};
        QString hint = {};
        QString note = {};
        bool showsDownload = false;   ///< with DownloadText
        bool offersSettings = false;  ///< the button "Open Settings"
        bool offersTrial = false;     ///< the box to dictate into

        bool operator==(const Content&) const = default;
    };

    DoneStepModel(AppState& appState, ServerResolver& resolver, EndpointFile endpointFile,
                  const HardwareProfile& hardware, Scheduler& scheduler);
    ~DoneStepModel() override;

    /// Looks from appear() to disappear(), but not beyond an answer to finish with.
    void appear();
    void disappear();

    [[nodiscard]] const DoneReadiness& readiness() const { return m_readiness; }
    [[nodiscard]] Content content() const;

    /// Shows where to let the local server run.
    void openSettings();

Q_SIGNALS:
    void readinessChanged();
    /// content() may be another.
    void changed();

private:
    void probe();
    void probeLocal();
    void ask(const QString& baseAddress, std::chrono::milliseconds timeout,
             const DoneReadiness& otherwise);
    void onReadiness(const DoneReadiness& readiness);
    void pollRTF();
    [[nodiscard]] std::optional<QString> slowMachineNote() const;
    [[nodiscard]] Content readyContent() const;

    AppState& m_appState;
    ServerResolver& m_resolver;
    const EndpointFile m_endpointFile;
    const HardwareProfile& m_hardware;
    Scheduler& m_scheduler;
    DoneReadiness m_readiness;
    std::optional<ServerMode> m_measuredMode;  ///< whose readiness it is
    std::optional<double> m_measuredRTF;
    std::unique_ptr<QObject> m_probing;  ///< while the next probe is due
    Cancellable m_probeTask;
    Cancellable m_rtfPollTimer;
};

}  // namespace quietlark
