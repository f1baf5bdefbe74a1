#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "fakes/fake_key_synthesizer.h"
#include "peers/x_server.h"
#include "platform/linux/x11/keys/x11_key_synthesizer.h"
#include "platform/x11/keys/key_window.h"

using namespace quietlark;

namespace {

/// A key synthesizer and the window that it types into.
class Typist {
public:
    virtual ~Typist() = default;
    virtual KeySynthesizer& synthesizer() = 0;
    virtual void loseTheWindow() = 0;
    /// How often a key that is no modifier has been typed since the last question.
    virtual std::size_t keystrokes() = 0;
};

class FakedTypist final : public Typist {
public:
    KeySynthesizer& synthesizer() override { return m_synthesizer; }
    void loseTheWindow() override { m_synthesizer.makeUnavailable(QStringLiteral("No window.")); }
    std::size_t keystrokes() override {
        return m_synthesizer.posted().size() -
               std::exchange(m_counted, m_synthesizer.posted().size());
    }

private:
    FakeKeySynthesizer m_synthesizer;
    std::size_t m_counted = 0;
};

class RealTypist final : public Typist {
public:
    RealTypist() { m_window.takeFocus(); }
    KeySynthesizer& synthesizer() override { return m_synthesizer; }
    void loseTheWindow() override { m_window.dropFocus(); }
    std::size_t keystrokes() override { return m_window.typed().size(); }

private:
    XServer m_server;
    KeyWindow m_window{m_server.display()};
    X11KeyConnection m_connection{m_server.display()};
    X11KeySynthesizer m_synthesizer{m_connection};
};

class KeySynthesizerContract : public ::testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        if (GetParam() == std::string("Fake")) {
            m_typist = std::make_unique<FakedTypist>();
        } else {
            m_typist = std::make_unique<RealTypist>();
        }
    }

    tl::expected<void, Unavailable> paste() {
        return m_typist->synthesizer().post(key_code::v, modifier::command);
    }

    std::unique_ptr<Typist> m_typist;
};

INSTANTIATE_TEST_SUITE_P(Over, KeySynthesizerContract, ::testing::Values("Fake", "X11"),
                         [](const auto& one) { return std::string(one.param); });

}  // namespace

TEST_P(KeySynthesizerContract, PostingTypesOneKey) {
    EXPECT_TRUE(paste());
    EXPECT_EQ(m_typist->keystrokes(), 1u);
}

TEST_P(KeySynthesizerContract, EveryPostTypesAgain) {
    EXPECT_TRUE(paste());
    EXPECT_TRUE(paste());
    EXPECT_EQ(m_typist->keystrokes(), 2u);
}

TEST_P(KeySynthesizerContract, WithoutAWindowNothingIsTypedAndTheReasonIsASentence) {
    m_typist->loseTheWindow();
    const auto result = paste();
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().reason.endsWith(QLatin1Char('.')));
    EXPECT_EQ(m_typist->keystrokes(), 0u);
}
