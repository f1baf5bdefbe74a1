#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include <QObject>
#include <tl/expected.hpp>

#include "platform/key_synthesizer.h"
#include "platform/pasteboard.h"
#include "platform/scheduler.h"

namespace quietlark {

/// Puts text into whatever has the keyboard focus, by way of the pasteboard: saves what that holds,
/// writes the text, types Command-V and a moment later puts the old contents back. Main thread;
/// never blocks it.
class Paster final : public QObject {
    Q_OBJECT

public:
    /// From the text being on the pasteboard to the keystroke, so that others have seen the change;
    /// and from one attempt to put it there to the next, so that they are done with theirs.
    static constexpr std::chrono::milliseconds visibilityDelay{50};
    /// How often the text is put on a pasteboard that somebody else takes in the same moment.
    static constexpr int mostAttempts = 3;
    /// From the keystroke to the old contents being put back.
    static constexpr std::chrono::milliseconds restoreDelay{200};

    /// Runs at most once, on the main thread and never before paste() returns: the keystroke is on
    /// its way; or it could not be typed and the text has been left on the pasteboard for good; or
    /// the text could not be put where the keystroke would have looked for it, and nothing has been
    /// typed: what part of the pasteboard has the text all the same keeps it for good, and what
    /// somebody else has copied stays.
    using PostedHandler = std::function<void(const tl::expected<void, Unavailable>&)>;

    Paster(Pasteboard& pasteboard, KeySynthesizer& keys, Scheduler& scheduler);

    /// A restore that is still due takes place at once; a text that replaced nothing known stays.
    ~Paster() override;

    /// Pastes `text`; does nothing but report when it is empty. A second call before the first has
    /// reported replaces it, and the first is never reported. When the pasteboard could not be read
    /// the text stays on it for good.
    void paste(const QString& text, PostedHandler onPosted);

private:
    void replaceContents(const QString& text, const PostedHandler& onPosted, int attemptsLeft);
    void write(const QString& text, const PostedHandler& onPosted, int attemptsLeft);
    void doNext(std::chrono::milliseconds delay, std::function<void()> step);
    void postCommandV(const PostedHandler& onPosted);
    void settlePasteboard();

    Pasteboard& m_pasteboard;
    KeySynthesizer& m_keys;
    Scheduler& m_scheduler;
    Cancellable m_question;  ///< to the pasteboard
    /// What the pasteboard held before our text; present while it is owed to the user.
    std::optional<PasteboardSnapshot> m_saved;
    /// The step that is due next; dropping it calls the step off.
    std::unique_ptr<QObject> m_nextStep;
};

}  // namespace quietlark
