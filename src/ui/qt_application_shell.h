#pragma once

#include <QMessageBox>
#include <QPointer>

#include "app/application_shell.h"

namespace quietlark {

/// The application on a desktop where a program is in the task bar exactly while it has windows.
class QtApplicationShell final : public ApplicationShell {
public:
    [[nodiscard]] ActivationPolicy activationPolicy() const override { return m_policy; }
    void setActivationPolicy(ActivationPolicy policy) override { m_policy = policy; }
    /// The windows ask for the focus themselves when they are shown.
    void activateIgnoringOtherApps() override {}
    /// One alert at a time: a newer one takes the place of the one before.
    void show(const Alert& alert, std::function<void()> onClosed) override;
    /// As an alert. The return and escape keys and closing it are the cancel button.
    void ask(const Confirmation& question, std::function<void(bool confirmed)> onAnswer) override;
    [[nodiscard]] bool isAlertVisible() const;
    void terminate() override;

private:
    QMessageBox& makeBox(QMessageBox::Icon icon, const QString& title, const QString& text);
    static void bringUp(QMessageBox& box);

    ActivationPolicy m_policy = ActivationPolicy::accessory;
    QPointer<QMessageBox> m_alert;
};

}  // namespace quietlark
