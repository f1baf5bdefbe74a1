#include <functional>
#include <optional>

#include "fakes/fake_model_fetcher.h"
#include "local_server/served_model.h"
#include "support/wait.h"

namespace quietlark {

namespace {

/// A fetch that goes as the test says.
class FakeFetching {
public:
    ModelFetcher& fetcher() { return m_fetcher; }
    void sourceIsGood() {
        m_answer = [this] {
            m_fetcher.report(10, 10);
            m_fetcher.succeed();
        };
    }
    void sourceFails() {
        m_answer = [this] { m_fetcher.fail(QStringLiteral("It is not there.")); };
    }
    bool runUntil(const std::function<bool()>& condition) {
        m_answer();
        m_fetcher.becomeStill();
        return condition();
    }

private:
    FakeModelFetcher m_fetcher;
    std::function<void()> m_answer;
};

class RealFetching : private ServedModel {
public:
    RealFetching() {
        EXPECT_TRUE(m_files.ensureDirectory());
        makeFetcher();
    }
    ModelFetcher& fetcher() { return *m_fetcher; }
    void sourceIsGood() { serverDoes(http_reply::answer(200, "0123456789")); }
    void sourceFails() { serverDoes(http_reply::answer(404, "gone")); }
    static bool runUntil(const std::function<bool()>& condition) { return waitUntil(condition); }
};

template <typename AnyFetching>
class ModelFetcherContract : public testing::Test {
protected:
    void fetch() {
        m_handle = m_fetching.fetcher().fetch(
            {.onProgress =
                 [this](qint64 written, qint64 expected) {
                     EXPECT_FALSE(m_outcome) << "progress after the end";
                     m_written = written;
                     m_expected = expected;
                 },
             .onEnd = [this](const auto& outcome) { m_outcome = outcome; }});
    }
    [[nodiscard]] bool ends() {
        return m_fetching.runUntil([this] { return m_outcome.has_value(); });
    }
    [[nodiscard]] bool becomesStill() {
        bool isStill = false;
        m_fetching.fetcher().whenStill([&isStill] { isStill = true; });
        EXPECT_FALSE(isStill) << "told before the call returned";
        return m_fetching.runUntil([&isStill] { return isStill; });
    }

    AnyFetching m_fetching;
    qint64 m_written = 0;
    qint64 m_expected = 0;
    std::optional<ModelFetcher::Outcome> m_outcome;
    Cancellable m_handle;
};

using Fetchings = testing::Types<FakeFetching, RealFetching>;
TYPED_TEST_SUITE(ModelFetcherContract, Fetchings);

TYPED_TEST(ModelFetcherContract, AModelIsProgressAndAnEndAfterTheCallHasReturned) {
    this->m_fetching.sourceIsGood();
    this->fetch();
    EXPECT_FALSE(this->m_outcome);
    ASSERT_TRUE(this->ends());
    EXPECT_TRUE(this->m_outcome->has_value());
    EXPECT_EQ(this->m_written, 10);
    EXPECT_EQ(this->m_expected, 10);
}

TYPED_TEST(ModelFetcherContract, AFailureIsASentence) {
    this->m_fetching.sourceFails();
    this->fetch();
    ASSERT_TRUE(this->ends());
    ASSERT_FALSE(this->m_outcome->has_value());
    EXPECT_FALSE(this->m_outcome->error().isEmpty());
}

TYPED_TEST(ModelFetcherContract, ACancelledFetchSaysNothingMore) {
    this->m_fetching.sourceIsGood();
    this->fetch();
    this->m_handle.cancel();
    ASSERT_TRUE(this->becomesStill());
    EXPECT_FALSE(this->m_outcome);
    EXPECT_EQ(this->m_written, 0);
}

}  // namespace

}  // namespace quietlark
