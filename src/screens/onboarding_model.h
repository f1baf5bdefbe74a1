#pragma once

#include <vector>

#include <QObject>
#include <QString>

#include "screens/done_readiness.h"
#include "screens/permission_list.h"
#include "screens/permission_poll.h"
#include "state/app_state.h"

namespace quietlark {

/// The wizard of the first run: which step it is at, and when it may go on. Main thread.
class OnboardingModel final : public QObject {
    Q_OBJECT

public:
    enum Step { welcomeStep, serverStep, permissionsStep, hotkeyStep, doneStep };
    static constexpr int totalSteps = 5;

    /// Begins at the step that the settings name, or the one nearest to it.
    OnboardingModel(AppState& appState, Permissions& permissions, Scheduler& scheduler);

    /// From 0 to totalSteps - 1.
    [[nodiscard]] int step() const { return m_step; }
    [[nodiscard]] bool canGoBack() const { return m_step >= 1; }
    [[nodiscard]] bool canAdvance() const;
    [[nodiscard]] QString nextTitle() const;

    /// The choice of a server has its own way on.
    [[nodiscard]] bool showsFooter() const { return m_step != serverStep; }

    [[nodiscard]] std::vector<PermissionRow> permissionRows() const;

    /// Looks for grants and for servers while the wizard is shown.
    void appear();
    void disappear();

    /// Goes on, or ends the wizard from its last step. Does not ask canAdvance().
    void next();
    void back();

    /// The user has chosen a server; goes on if that was the step.
    void onServerCommitted();

    void setDoneReadiness(const DoneReadiness& readiness);

Q_SIGNALS:
    void stepChanged(int step);
    /// Any of the above may answer something else now.
    void changed();
    /// The user has come to the end; the settings say so.
    void finished();

private:
    void setStep(int step);
    void finish();

    AppState& m_appState;
    PermissionList m_permissions;
    PermissionPoll m_poll;
    DoneReadiness m_doneReadiness;
    int m_step;
    bool m_isShown = false;
};

}  // namespace quietlark
