#include "platform/qt_widgets/focus_aware_key_synthesizer.h"

#include <QLineEdit>
#include <QPushButton>
#include <gtest/gtest.h>

#include "fakes/fake_key_synthesizer.h"
#include "support/wait.h"

namespace quietlark {
namespace {

class FocusAwareKeySynthesizerTest : public testing::Test {
protected:
    /// Gives the keyboard to a window of this program.
    template <typename Widget>
    void focus(Widget& widget) {
        widget.show();
        widget.activateWindow();
        widget.setFocus();
        ASSERT_TRUE(waitUntil([&widget] { return widget.hasFocus(); }));
    }

    auto paste() { return keys.post(key_code::v, modifier::command); }

    FakeKeySynthesizer elsewhere;
    FocusAwareKeySynthesizer keys{elsewhere};
};

TEST_F(FocusAwareKeySynthesizerTest, OtherProgramsGetEveryKey) {
    EXPECT_TRUE(paste());
    EXPECT_EQ(elsewhere.posted().size(), 1u);
}

TEST_F(FocusAwareKeySynthesizerTest, AFieldOfOurOwnTakesText) {
    QLineEdit field;
    focus(field);
    EXPECT_TRUE(paste());
    EXPECT_EQ(elsewhere.posted().size(), 1u);
}

TEST_F(FocusAwareKeySynthesizerTest, AButtonOfOurOwnTakesNone) {
    QPushButton button;
    focus(button);
    EXPECT_FALSE(paste());
    EXPECT_TRUE(elsewhere.posted().empty());
}

TEST_F(FocusAwareKeySynthesizerTest, AFieldThatOnlyShowsTextTakesNone) {
    QLineEdit field;
    field.setReadOnly(true);
    focus(field);
    EXPECT_FALSE(paste());
}

TEST_F(FocusAwareKeySynthesizerTest, WhatCannotBeTypedAtAllStaysSo) {
    elsewhere.makeUnavailable(QStringLiteral("No keys."));
    EXPECT_EQ(keys.unavailable()->reason, QStringLiteral("No keys."));
    EXPECT_EQ(paste().error().reason, QStringLiteral("No keys."));
}

}  // namespace
}  // namespace quietlark
