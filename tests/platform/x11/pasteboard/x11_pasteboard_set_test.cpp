#include <cstdint>
#include <cstring>
#include <vector>

#include <signal.h>

#include "peers/x_proxy.h"
#include "platform/x11/pasteboard/x11_pasteboard_fixture.h"

namespace quietlark {
namespace {

/// Another program takes the clipboard in the very moment in which the pasteboard is about to.
class X11PasteboardRaceTest : public X11PasteboardTest {
protected:
    void TearDown() override { quit(); }

    /// Takes the clipboard before each of the pasteboard's first `times` requests for it.
    void othersAreFaster(int times) {
        m_proxy.emplace(server.display(), [this, times](const std::vector<std::uint8_t>& request) {
            if (request[0] == XCB_SET_SELECTION_OWNER && m_races++ < times)
                takeLaterThan(timeIn(request));
        });
        open(m_proxy->display());
    }

private:
    static xcb_timestamp_t timeIn(const std::vector<std::uint8_t>& request) {
        xcb_set_selection_owner_request_t taking{};
        std::memcpy(&taking, request.data(), sizeof taking);
        return taking.time;
    }

    // On the proxy's thread, which is all that moves meanwhile.
    void takeLaterThan(xcb_timestamp_t time) {
        if (!m_other) m_other.emplace(server.display().constData());
        while (m_other->time() <= time) {
        }
        m_other->own("CLIPBOARD");
    }

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

TEST_F(X11PasteboardTest, ATextIsNotSetWhenTheServerEndsMeanwhile) {
    kill(static_cast<pid_t>(server.processId()), SIGSTOP);
    bool isRefused = false;
    const auto question = pasteboard().setString(
        QStringLiteral("dictated"), [&](const auto& outcome) { isRefused = !outcome.has_value(); });
    kill(static_cast<pid_t>(server.processId()), SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return isRefused; }));
}

}  // namespace
}  // namespace quietlark
