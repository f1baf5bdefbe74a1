#include <memory>
#include <optional>

#include <gtest/gtest.h>

#include "fakes/fake_pasteboard.h"
#include "fakes/fake_scheduler.h"
#include "platform/linux/x11/pasteboard/x11_pasteboard.h"
#include "platform/qt/qt_scheduler.h"
#include "platform/x11/pasteboard/clipboard_peers.h"
#include "support/wait.h"

namespace quietlark {
namespace {

/// A pasteboard and the other programs around it.
class FakeDesk {
public:
    Pasteboard& pasteboard() { return m_pasteboard; }

    void userCopies(const QString& text) { m_pasteboard.userCopies(text); }
    void userCopiesTextAndUnreadableImage(const QString& text) {
        m_pasteboard.userCopies({{{FakePasteboard::textType, text.toUtf8()}, {"image", "pixels"}}});
        m_pasteboard.cannotBeRead("image");
    }
    void userCopiesWhatCannotBeListed() {
        m_pasteboard.userCopies(QStringLiteral("unknown"));
        m_pasteboard.cannotBeListed();
    }

    /// The text that another program pastes; null when it finds none.
    QString pasted() { return m_pasteboard.text(); }

    bool waitFor(const std::function<bool()>& condition) {
        m_scheduler.runPosted();
        return condition();
    }

private:
    FakeScheduler m_scheduler;
    FakePasteboard m_pasteboard{m_scheduler};
};

class X11Desk {
public:
    Pasteboard& pasteboard() { return m_pasteboard; }

    void userCopies(const QString& text) {
        m_owner.emplace(m_server, QStringList{QStringLiteral("UTF8_STRING=text:") + text});
    }
    void userCopiesTextAndUnreadableImage(const QString& text) {
        m_owner.emplace(m_server, QStringList{QStringLiteral("UTF8_STRING=text:") + text,
                                              QStringLiteral("image/png=refuse")});
    }
    void userCopiesWhatCannotBeListed() {
        m_owner.emplace(m_server, QStringList{QStringLiteral("TARGETS=refuse")});
    }

    QString pasted() {
        // What was ordered before is done when this is answered.
        bool isSettled = false;
        const auto settling = m_pasteboard.snapshot([&](const auto&) { isSettled = true; });
        EXPECT_TRUE(waitUntil([&] { return isSettled; }));
        const QByteArray text = m_reader.text();
        return text == "refused" ? QString() : QString::fromUtf8(text);
    }

    bool waitFor(const std::function<bool()>& condition) { return waitUntil(condition); }

private:
    XServer m_server;
    ClipboardReader m_reader{m_server};
    std::optional<ClipboardOwner> m_owner;
    QtScheduler m_scheduler;
    X11Pasteboard m_pasteboard{
        m_scheduler, m_server.display(), {.snapshot = std::chrono::hours(1)}};
};

template <typename Desk>
class PasteboardContract : public testing::Test {
protected:
    std::optional<PasteboardSnapshot> snapshot() {
        bool isAnswered = false;
        std::optional<PasteboardSnapshot> answer;
        const auto question = pasteboard().snapshot([&](auto snapshot) {
            answer = std::move(snapshot);
            isAnswered = true;
        });
        EXPECT_FALSE(isAnswered) << "answered before the call returned";
        EXPECT_TRUE(desk.waitFor([&] { return isAnswered; }));
        return answer;
    }

    /// Puts a text there; true when others find it from now on.
    bool set(const QString& text) {
        std::optional<bool> isSet;
        const auto question =
            pasteboard().setString(text, [&](const auto& outcome) { isSet = outcome.has_value(); });
        EXPECT_FALSE(isSet) << "answered before the call returned";
        EXPECT_TRUE(desk.waitFor([&] { return isSet.has_value(); }));
        return isSet.value_or(false);
    }

    Pasteboard& pasteboard() { return desk.pasteboard(); }

    /// What the user has, a text of ours over it, and back again.
    void dictateAndRestore(const QString& text) {
        const auto before = snapshot();
        ASSERT_TRUE(before);
        ASSERT_TRUE(set(text));
        pasteboard().restore(*before);
    }

    Desk desk;
};

using Desks = testing::Types<FakeDesk, X11Desk>;
TYPED_TEST_SUITE(PasteboardContract, Desks);

TYPED_TEST(PasteboardContract, AnEmptyPasteboardGivesAnEmptySnapshot) {
    EXPECT_EQ(this->snapshot(), PasteboardSnapshot());
}

TYPED_TEST(PasteboardContract, ASnapshotHoldsWhatWasCopied) {
    this->desk.userCopies(QStringLiteral("copied"));
    const auto snapshot = this->snapshot();
    ASSERT_TRUE(snapshot);
    ASSERT_EQ(snapshot->size(), 1U);
    EXPECT_EQ(snapshot->front().front().data, "copied");
}

TYPED_TEST(PasteboardContract, ARepresentationThatCannotBeReadIsLeftOut) {
    this->desk.userCopiesTextAndUnreadableImage(QStringLiteral("copied"));
    const auto snapshot = this->snapshot();
    ASSERT_TRUE(snapshot);
    ASSERT_EQ(snapshot->size(), 1U);
    EXPECT_EQ(snapshot->front().size(), 1U);
}

TYPED_TEST(PasteboardContract, APasteboardThatCannotBeListedGivesNoSnapshot) {
    this->desk.userCopiesWhatCannotBeListed();
    EXPECT_EQ(this->snapshot(), std::nullopt);
}

TYPED_TEST(PasteboardContract, AWithdrawnQuestionIsNotAnswered) {
    bool isAnswered = false;
    {
        const auto question = this->pasteboard().snapshot([&](const auto&) { isAnswered = true; });
    }
    (void)this->snapshot();
    EXPECT_FALSE(isAnswered);
}

TYPED_TEST(PasteboardContract, AQuestionMayBeWithdrawnInItsOwnAnswer) {
    int answers = 0;
    Cancellable question;
    question = this->pasteboard().snapshot([&](const auto&) {
        ++answers;
        question.cancel();
    });
    EXPECT_TRUE(this->desk.waitFor([&] { return answers == 1; }));
}

TYPED_TEST(PasteboardContract, OthersPasteTheTextThatWasSet) {
    EXPECT_TRUE(this->set(QStringLiteral("dictat\u00e9")));
    EXPECT_EQ(this->desk.pasted(), QStringLiteral("dictat\u00e9"));
}

TYPED_TEST(PasteboardContract, ATextIsSetAlsoWhenNobodyWaitsForIt) {
    bool isAnswered = false;
    (void)this->pasteboard().setString(QStringLiteral("dictated"),
                                       [&](const auto&) { isAnswered = true; });
    (void)this->snapshot();
    EXPECT_EQ(this->desk.pasted(), QStringLiteral("dictated"));
    EXPECT_FALSE(isAnswered);
}

TYPED_TEST(PasteboardContract, ATextGivesWayAlsoBeforeItIsKnownToBeSet) {
    this->desk.userCopies(QStringLiteral("copied"));
    const auto before = this->snapshot();
    ASSERT_TRUE(before);
    const auto question =
        this->pasteboard().setString(QStringLiteral("dictated"), [](const auto&) {});
    this->pasteboard().restore(*before);
    EXPECT_EQ(this->desk.pasted(), QStringLiteral("copied"));
}

TYPED_TEST(PasteboardContract, OthersPasteWhatWasCopiedBeforeTheText) {
    this->desk.userCopies(QStringLiteral("copied"));
    this->dictateAndRestore(QStringLiteral("dictated"));
    EXPECT_EQ(this->desk.pasted(), QStringLiteral("copied"));
}

TYPED_TEST(PasteboardContract, AnEmptyPasteboardIsEmptyAgain) {
    this->dictateAndRestore(QStringLiteral("dictated"));
    EXPECT_EQ(this->desk.pasted(), QString());
    EXPECT_EQ(this->snapshot(), PasteboardSnapshot());
}

TYPED_TEST(PasteboardContract, WhatWasRestoredCanBeSnapshotAgain) {
    this->desk.userCopies(QStringLiteral("copied"));
    const auto before = this->snapshot();
    this->dictateAndRestore(QStringLiteral("dictated"));
    EXPECT_EQ(this->snapshot(), before);
}

TYPED_TEST(PasteboardContract, ASnapshotIsWhatATextCoversUntilItIsRestored) {
    this->desk.userCopies(QStringLiteral("copied"));
    const auto before = this->snapshot();
    (void)this->set(QStringLiteral("dictated"));
    EXPECT_EQ(this->snapshot(), before);
    (void)this->set(QStringLiteral("more"));
    EXPECT_EQ(this->snapshot(), before);
}

TYPED_TEST(PasteboardContract, ATextOverWhatCouldNotBeListedStays) {
    this->desk.userCopiesWhatCannotBeListed();
    ASSERT_EQ(this->snapshot(), std::nullopt);
    (void)this->set(QStringLiteral("dictated"));
    const auto snapshot = this->snapshot();
    ASSERT_TRUE(snapshot);
    EXPECT_EQ(snapshot->front().front().data, "dictated");
}

TYPED_TEST(PasteboardContract, ATextThatIsKeptIsTheUsersOwn) {
    this->desk.userCopies(QStringLiteral("copied"));
    const auto before = this->snapshot();
    ASSERT_TRUE(before);
    (void)this->set(QStringLiteral("dictated"));
    this->pasteboard().keepString();
    const auto kept = this->snapshot();
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->front().front().data, "dictated");
    this->pasteboard().restore(*before);
    EXPECT_EQ(this->desk.pasted(), QStringLiteral("dictated"));
}

TYPED_TEST(PasteboardContract, ATextThatIsKeptIsRestoredLikeAnyOther) {
    this->desk.userCopies(QStringLiteral("copied"));
    (void)this->snapshot();
    (void)this->set(QStringLiteral("kept"));
    this->pasteboard().keepString();
    const auto kept = this->snapshot();
    this->dictateAndRestore(QStringLiteral("dictated"));
    EXPECT_EQ(this->desk.pasted(), QStringLiteral("kept"));
    EXPECT_EQ(this->snapshot(), kept);
}

TYPED_TEST(PasteboardContract, WithoutATextNothingIsKept) {
    this->pasteboard().keepString();
    EXPECT_EQ(this->snapshot(), PasteboardSnapshot());
    this->desk.userCopies(QStringLiteral("copied"));
    this->dictateAndRestore(QStringLiteral("dictated"));
    this->pasteboard().keepString();
    EXPECT_EQ(this->desk.pasted(), QStringLiteral("copied"));
}

TYPED_TEST(PasteboardContract, ANewerCopyIsNotOverwritten) {
    this->desk.userCopies(QStringLiteral("copied"));
    const auto before = this->snapshot();
    ASSERT_TRUE(before);
    ASSERT_TRUE(this->set(QStringLiteral("dictated")));
    this->desk.userCopies(QStringLiteral("newer"));
    this->pasteboard().restore(*before);
    EXPECT_EQ(this->desk.pasted(), QStringLiteral("newer"));
}

TYPED_TEST(PasteboardContract, RestoringWithoutATextDoesNothing) {
    this->desk.userCopies(QStringLiteral("copied"));
    this->pasteboard().restore({});
    EXPECT_EQ(this->desk.pasted(), QStringLiteral("copied"));
}

}  // namespace
}  // namespace quietlark
