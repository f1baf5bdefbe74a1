#pragma once

#include <memory>
#include <optional>
#include <utility>

#include <gtest/gtest.h>

#include "peers/x_peer.h"
#include "platform/linux/x11/pasteboard/x11_pasteboard.h"
#include "platform/qt/qt_scheduler.h"
#include "platform/x11/pasteboard/clipboard_peers.h"
#include "support/wait.h"

namespace quietlark {

/// A pasteboard on an X server of its own. Nothing runs into a limit unless a test sets it.
class X11PasteboardTest : public testing::Test {
protected:
    static X11PasteboardLimits patient() {
        using namespace std::chrono_literals;
        return {.snapshot = 1h, .grace = 1h, .piece = 1h, .handover = 1h};
    }

    void SetUp() override {
        ASSERT_FALSE(server.display().isEmpty());
        open();
    }

    void open(const X11PasteboardLimits& limits = patient()) { open(server.display(), limits); }

    void open(const QByteArray& display, const X11PasteboardLimits& limits = patient()) {
        quit();
        m_pasteboard = std::make_unique<X11Pasteboard>(m_scheduler, display, limits);
    }

    void quit() { m_pasteboard.reset(); }

    ClipboardOwner& userCopies(const QStringList& offers) {
        m_owner = std::make_unique<ClipboardOwner>(server, offers);
        return *m_owner;
    }

    void userCopies(const char* text) {
        userCopies({QStringLiteral("UTF8_STRING=text:") + QString::fromUtf8(text)});
    }

    void beginSnapshot() {
        m_isAnswered = false;
        m_question = m_pasteboard->snapshot([this](std::optional<PasteboardSnapshot> snapshot) {
            m_snapshot = std::move(snapshot);
            m_isAnswered = true;
        });
    }

    std::optional<PasteboardSnapshot> finishSnapshot() {
        EXPECT_TRUE(waitUntil([this] { return m_isAnswered; }, std::chrono::seconds(90)));
        return m_snapshot;
    }

    std::optional<PasteboardSnapshot> snapshot() {
        beginSnapshot();
        return finishSnapshot();
    }

    /// The representations of the one item that a snapshot holds.
    PasteboardItem item() {
        const auto read = snapshot();
        return read && read->size() == 1 ? read->front() : PasteboardItem();
    }

    /// Orders a text to be put there; nobody waits for it.
    void order(const QString& text) {
        (void)m_pasteboard->setString(text, [](const auto&) {});
    }

    /// Puts a text on the pasteboard; answers nothing when it is there, else why not.
    std::optional<Unavailable> set(const QString& text) {
        bool isAnswered = false;
        std::optional<Unavailable> reason;
        const auto question = m_pasteboard->setString(text, [&](const auto& outcome) {
            if (!outcome) reason = outcome.error();
            isAnswered = true;
        });
        EXPECT_TRUE(waitUntil([&] { return isAnswered; }));
        return reason;
    }

    /// Puts a text on the pasteboard over whatever is there, which it answers.
    PasteboardSnapshot dictate(const QString& text) {
        auto before = snapshot();
        EXPECT_FALSE(set(text));
        return before.value_or(PasteboardSnapshot());
    }

    void restore(PasteboardSnapshot contents) {
        m_pasteboard->restore(std::move(contents));
        settle();
    }

    /// Commands are carried out in order, so the answer to one more tells that all are done.
    void settle() { (void)snapshot(); }

    X11Pasteboard& pasteboard() { return *m_pasteboard; }

    XServer server;

private:
    QtScheduler m_scheduler;
    std::unique_ptr<ClipboardOwner> m_owner;
    std::unique_ptr<X11Pasteboard> m_pasteboard;
    Cancellable m_question;
    bool m_isAnswered = false;
    std::optional<PasteboardSnapshot> m_snapshot;
};

}  // namespace quietlark
