#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include <QObject>

#include "app/bundle.h"
#include "app/status_presenter.h"
#include "app/window_presenter.h"
#include "local_server/daemon_controller.h"

namespace quietlark {

/// Sets the local server up and takes it back, one request at a time: a new one calls off what the
/// one before had still to do. Main thread.
class DaemonRegistrar final : public QObject {
    Q_OBJECT

public:
    /// From a change of the registration to the system having settled.
    static constexpr std::chrono::milliseconds settleDelay{300};
    /// From taking the server back to setting it up again.
    static constexpr std::chrono::milliseconds replacementPause{1000};

    DaemonRegistrar(DaemonController& daemon, Bundle& bundle, StatusPresenter& status,
                    WindowPresenter& windows);

    /// Registers the server, and shows the user what there is to do when that fails, when the
    /// server needs approval, or when the program is not installed where it can be registered. Does
    /// nothing more while it is just being registered: whoever asks meanwhile gets the one answer.
    void registerDaemon();

    /// For a server that is registered: registers it afresh when the program has been replaced
    /// since, so that the new one runs, and again when it is just being taken back. Failures of the
    /// former are not reported.
    void refreshIfBundleChanged();

    /// Takes the server back. Failures are not reported.
    void unregister();

    /// Takes the server back, and shows its status once the system has settled.
    void unregisterAndRefresh();

    /// Calls off what is still to do; a request that the system has already got stands.
    void callOff();

private:
    /// What the system has been asked and has not answered.
    enum class UnderWay { nothing, registering, takingBack };

    void afterPause(std::chrono::milliseconds pause, std::function<void()> action);
    void onRegistered(const tl::expected<void, ServiceError>& result);
    void onSettled();
    void registerReplacement();

    DaemonController& m_daemon;
    Bundle& m_bundle;
    StatusPresenter& m_status;
    WindowPresenter& m_windows;
    Cancellable m_request;
    UnderWay m_underWay = UnderWay::nothing;
    /// Lives until what is to be done after a pause has been; dropping it calls that off.
    std::unique_ptr<QObject> m_pause;
};

}  // namespace quietlark
