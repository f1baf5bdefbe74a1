#pragma once

#include <QObject>
#include <QStringList>

#include "app/window_presenter.h"
#include "platform/cancellable.h"
#include "platform/installation.h"
#include "platform/login_item.h"
#include "platform/own_files.h"
#include "platform/privacy_records.h"
#include "platform/recycler.h"
#include "platform/user_defaults.h"
#include "state/app_state.h"

namespace quietlark {

/// Removes the application from this computer. Takes as much away as it can: only that the bundle
/// stays is reported, all other failures are ignored. Main thread.
class Uninstall final : public QObject {
    Q_OBJECT

public:
    /// What is to be taken away from this computer, and how.
    struct Computer {
        const Installation& installation;
        UserDefaults& defaults;
        LoginItem& loginItem;
        OwnFiles& files;
        PrivacyRecords& privacy;
        Recycler& recycler;
    };

    Uninstall(AppState& appState, WindowPresenter& windows, const Computer& computer);

    /// Notes what is missing before the application writes anything: to be called at the launch.
    void prepare();

    /// Asks the user, and goes through with it if that is the answer. One at a time.
    void run();

Q_SIGNALS:
    /// The user is sure: nothing may write, register or listen any more.
    void confirmed();

    /// The application is gone, or the user has been told that it is not: the process is to end.
    void finished();

private:
    void onAnswer(bool isConfirmed);
    void onServerGone();
    void removeFiles();
    void resetPrivacy();
    void recycle();

    AppState& m_appState;
    WindowPresenter& m_windows;
    const Computer m_computer;
    bool m_isRunning = false;
    QStringList m_madeFolders;  ///< by using the application, if they are still there
    Cancellable m_request;      ///< what is waited for: the server's end, or the administrator's
};

}  // namespace quietlark
