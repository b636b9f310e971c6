#include "Hosts/MacOS/System/MacDockControl.h"

#include "Quorvel/Core/DockController.h"
#include "Quorvel/Core/UserSettings.h"
#include "Tests/MacSystem/Support/MacFixture.h"

namespace quorvel::test {

namespace {

struct MacDockControlTest : MacFixture {
    MacDockControl dock{PrivateSymbols::load()};

    template <typename Type> void expectValue(Type wanted)
    {
        const auto value = dock.value("key");
        const auto* held = std::get_if<Type>(&value);
        ASSERT_NE(held, nullptr);
        EXPECT_EQ(*held, wanted);
    }
};

}

// Faults: a number taken for a flag or the other way round, or what is neither for one of them.
TEST_F(MacDockControlTest, preferencesAreReadByTheirType)
{
    EXPECT_TRUE(std::holds_alternative<Preferences::Missing>(dock.value("key")));
    mac.answer("key", truth(true));
    expectValue(true);
    mac.answer("key", number(1));
    expectValue(1.0);
    mac.answer("key", real(0.2));
    expectValue(0.2);
    for (const auto& other : {text("1000"), null(), array({})}) {
        mac.answer("key", other);
        EXPECT_TRUE(std::holds_alternative<Preferences::OtherType>(dock.value("key")));
    }
}

TEST_F(MacDockControlTest, hidesTheDockByItsCallsAndPreferences)
{
    auto platform = desktop.platform();
    UserSettings settings{platform.files, platform.loginItem, platform.application,
        platform.dispatch, platform.trace};
    DockController controller{dock, platform.files, settings, platform.dispatch};
    settings.setHideDock(true);
    EXPECT_THAT(desktop.dock().takeCalls(),
        ElementsAre("auto-hide true", "autohide-delay 1000", "synchronise", "no-bouncing true",
            "synchronise"));
    EXPECT_TRUE(dock.isAutoHideEnabled());
}

// Fault: a call through a pointer that is null.
TEST_F(MacDockControlTest, isNotThereWithoutItsCalls)
{
    EXPECT_TRUE(MacDockControl::isAvailable(PrivateSymbols::load()));
    EXPECT_TRUE(dock.isAtBottom());
    desktop.dock().setAtBottom(false);
    EXPECT_FALSE(dock.isAtBottom());
    mac.removeSymbol("CoreDockGetOrientationAndPinning");
    EXPECT_FALSE(MacDockControl{PrivateSymbols::load()}.isAtBottom());
    for (auto* name : {"CoreDockGetAutoHideEnabled", "CoreDockSetAutoHideEnabled"}) {
        mac.removeSymbol(name);
        EXPECT_FALSE(MacDockControl::isAvailable(PrivateSymbols::load()));
    }
}

}
