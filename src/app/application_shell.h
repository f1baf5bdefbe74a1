#pragma once

#include <functional>

#include <QString>

namespace quietlark {

/// How the application appears among the others.
enum class ActivationPolicy {
    regular = 0,    ///< in the task bar, as every program with windows
    accessory = 1,  ///< nowhere but in the status bar
};

/// One sentence or two that the user must acknowledge with a single button.
struct Alert {
    enum class Style { informational, warning };

    Style style = Style::informational;
    QString title;
    QString text;
    QString button;

    bool operator==(const Alert&) const = default;
};

/// A question before something is done that cannot be taken back.
struct Confirmation {
    QString title;
    QString text;
    QString destructiveButton;  ///< the first one, which does it
    QString cancelButton;       ///< the second one, which a hasty user gets

    bool operator==(const Confirmation&) const = default;
};

/// The running application as the desktop sees it. Main thread.
class ApplicationShell {
public:
    virtual ~ApplicationShell() = default;

    [[nodiscard]] virtual ActivationPolicy activationPolicy() const = 0;
    virtual void setActivationPolicy(ActivationPolicy policy) = 0;

    /// Makes this the active application, whichever was it before.
    virtual void activateIgnoringOtherApps() = 0;

    /// Shows an alert that keeps the other windows from being used, and returns at once.
    /// `onClosed`, where there is one, runs once, when it has gone from the screen.
    virtual void show(const Alert& alert, std::function<void()> onClosed) = 0;

    /// Asks in the same way. `onAnswer` runs once, with whether it was the destructive button that
    /// made the question go.
    virtual void ask(const Confirmation& question,
                     std::function<void(bool confirmed)> onAnswer) = 0;

    /// Ends the program when the event loop gets to it.
    virtual void terminate() = 0;
};

}  // namespace quietlark
