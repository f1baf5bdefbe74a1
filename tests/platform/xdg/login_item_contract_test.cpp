#include <functional>
#include <memory>
#include <string>

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "fakes/fake_login_item.h"
#include "platform/linux/xdg/autostart_entry.h"

namespace quietlark {
namespace {

class LoginItemContract : public ::testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        if (GetParam() == std::string("Fake")) {
            item = std::make_unique<FakeLoginItem>();
        } else {
            item =
                std::make_unique<AutostartEntry>(config.path(), QStringLiteral("/bin/quietlark"));
        }
    }

    QTemporaryDir config;
    std::unique_ptr<LoginItem> item;
};

INSTANTIATE_TEST_SUITE_P(Over, LoginItemContract, ::testing::Values("Fake", "Xdg"),
                         [](const auto& one) { return std::string(one.param); });

TEST_P(LoginItemContract, ItIsNotRegisteredAtFirst) {
    EXPECT_EQ(item->status(), ServiceStatus::notRegistered);
}

TEST_P(LoginItemContract, RegisteringEnablesIt) {
    EXPECT_TRUE(item->registerItem());
    EXPECT_EQ(item->status(), ServiceStatus::enabled);
    EXPECT_TRUE(item->registerItem());
    EXPECT_EQ(item->status(), ServiceStatus::enabled);
}

TEST_P(LoginItemContract, UnregisteringTakesItBack) {
    EXPECT_TRUE(item->registerItem());
    EXPECT_TRUE(item->unregisterItem());
    EXPECT_EQ(item->status(), ServiceStatus::notRegistered);
}

TEST_P(LoginItemContract, UnregisteringWhatIsNotThereIsHarmless) {
    EXPECT_TRUE(item->unregisterItem());
    EXPECT_EQ(item->status(), ServiceStatus::notRegistered);
}

}  // namespace
}  // namespace quietlark
