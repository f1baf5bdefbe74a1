#include <cstdint>
#include <cstring>
#include <vector>

#include <signal.h>

#include "dictation/paster.h"
#include "fakes/fake_key_synthesizer.h"
#include "peers/x_proxy.h"
#include "platform/x11/keys/key_window.h"
#include "platform/x11/pasteboard/x11_pasteboard_fixture.h"

namespace quietlark {
namespace {

/// Another program takes the clipboard in the very moment in which the pasteboard is about to.
class X11PasteboardRaceTest : public X11PasteboardTest {
protected:
    void TearDown() override {
        m_paster.reset();
        quit();
    }

    /// Takes a selection before each of the pasteboard's first `times` requests for it, and does
    /// not say what it has.
    void othersAreFaster(int times, const char* selection = "CLIPBOARD",
                         const X11PasteboardLimits& limits = patient()) {
        m_other.emplace(server.display().constData());
        const auto atom = m_other->atom(selection);
        m_proxy.emplace(server.display(), [=, this](const std::vector<std::uint8_t>& request) {
            const auto taking = takingIn(request);
            if (taking && taking->selection == atom && m_races++ < times)
                takeLaterThan(taking->time, selection);
        });
        open(m_proxy->display(), limits);
    }

    /// Dictates into the program that has the focus, until it is known what became of that.
    void paste() {
        m_paster.emplace(pasteboard(), m_keys, m_scheduler);
        std::optional<bool> isPosted;
        m_paster->paste(QStringLiteral("dictated"),
                        [&](const auto& posted) { isPosted = posted.has_value(); });
        EXPECT_TRUE(waitUntil([&] { return isPosted.has_value(); }));
        EXPECT_EQ(isPosted, m_keys.posted().size() == 1);
    }

    void finishPasting() {
        m_paster.reset();
        settle();
    }

    [[nodiscard]] bool hasTyped() const { return !m_keys.posted().empty(); }

    /// Waits for programs that answer, and not long for one that does not.
    static X11PasteboardLimits realistic() {
        auto limits = patient();
        limits.snapshot = X11PasteboardLimits().snapshot;
        return limits;
    }

private:
    using Taking = xcb_set_selection_owner_request_t;

    static std::optional<Taking> takingIn(const std::vector<std::uint8_t>& request) {
        if (request[0] != XCB_SET_SELECTION_OWNER) return std::nullopt;
        Taking taking{};
        std::memcpy(&taking, request.data(), sizeof taking);
        return taking;
    }

    // On the proxy's thread, which is all that moves meanwhile.
    void takeLaterThan(xcb_timestamp_t time, const char* selection) {
        EXPECT_TRUE(spinUntil([&] { return m_other->time() > time; }));
        m_other->own(selection);
    }

    QtScheduler m_scheduler;
    FakeKeySynthesizer m_keys;
    std::optional<Paster> m_paster;

    std::optional<XPeer> m_other;
    int m_races = 0;
    std::optional<XProxy> m_proxy;
};

TEST_F(X11PasteboardTest, ATextThatIsSetIsThereForOthersAtOnce) {
    userCopies("copied");
    ClipboardReader reader(server);
    EXPECT_FALSE(set(QStringLiteral("dictated")));
    EXPECT_EQ(reader.text(), "dictated");
}

TEST_F(X11PasteboardRaceTest, ATextThatAnotherProgramIsFasterThanIsNotSet) {
    othersAreFaster(1);
    const auto reason = set(QStringLiteral("dictated"));
    ASSERT_TRUE(reason);
    EXPECT_TRUE(reason->reason.contains(QStringLiteral("Another program")));
}

TEST_F(X11PasteboardRaceTest, TheNextAttemptSetsIt) {
    othersAreFaster(1);
    EXPECT_TRUE(set(QStringLiteral("dictated")));
    EXPECT_FALSE(set(QStringLiteral("dictated")));
    ClipboardReader reader(server);
    EXPECT_EQ(reader.text(), "dictated");
}

TEST_F(X11PasteboardRaceTest, TheSelectionThatAnotherProgramKeepsTakingIsNamed) {
    othersAreFaster(1, "PRIMARY");
    KeyWindow terminal(server.display(), "XTerm");
    terminal.takeFocus();
    const auto reason = set(QStringLiteral("dictated"));
    ASSERT_TRUE(reason);
    EXPECT_TRUE(reason->reason.contains(QStringLiteral("the selection")));
    EXPECT_EQ(ClipboardReader(server).text(), "dictated");
}

TEST_F(X11PasteboardRaceTest, ADictationMakesTheNextAttempt) {
    othersAreFaster(Paster::mostAttempts - 1, "CLIPBOARD", realistic());
    paste();
    EXPECT_TRUE(hasTyped());
    EXPECT_EQ(ClipboardReader(server).text(), "dictated");
}

TEST_F(X11PasteboardRaceTest, ADictationThatLostTheSelectionOnceBringsTheClipboardBack) {
    userCopies("copied");
    othersAreFaster(1, "PRIMARY", realistic());
    KeyWindow terminal(server.display(), "XTerm");
    terminal.takeFocus();
    paste();
    EXPECT_TRUE(hasTyped());
    finishPasting();
    EXPECT_EQ(ClipboardReader(server).text(), "copied");
}

TEST_F(X11PasteboardRaceTest, ADictationThatKeepsLosingTheSelectionIsLeftOnTheClipboard) {
    userCopies("copied");
    othersAreFaster(Paster::mostAttempts, "PRIMARY", realistic());
    KeyWindow terminal(server.display(), "XTerm");
    terminal.takeFocus();
    paste();
    EXPECT_FALSE(hasTyped());
    finishPasting();
    EXPECT_EQ(ClipboardReader(server).text(), "dictated");
}

TEST_F(X11PasteboardTest, ATextIsNotSetWhenTheServerEndsMeanwhile) {
    kill(static_cast<pid_t>(server.processId()), SIGSTOP);
    QString reason;
    const auto question =
        pasteboard().setString(QStringLiteral("dictated"), [&](const auto& outcome) {
            if (!outcome) reason = outcome.error().reason;
        });
    kill(static_cast<pid_t>(server.processId()), SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return !reason.isEmpty(); }));
    EXPECT_TRUE(reason.contains(QStringLiteral("no X server"))) << reason.toStdString();
}

}  // namespace
}  // namespace quietlark
