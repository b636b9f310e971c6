#include "Hosts/MacOS/System/MacLaunchServices.h"
#include "Tests/MacSystem/Support/MacFixture.h"

namespace quorvel::test {

namespace {

struct MacLaunchServicesTest : MacFixture {
    void setInformation(const std::string& serial, Value information)
    {
        mac.answer("string \"" + serial + "\"", std::move(information));
    }
    static std::vector<ApplicationStatus> statuses()
    {
        return MacLaunchServices{PrivateSymbols::load()}.runningApplications();
    }
    static Value badge(Value label) { return dictionary({{"label", std::move(label)}}); }
};

}

TEST_F(MacLaunchServicesTest, labelsAreTextsInDictionariesAndEverythingElseIsNone)
{
    mac.answer("CopyRunningApplicationArray",
        array({text("a"), text("b"), text("c"), text("d"), text("e"), text("f"), null()}));
    const auto identifier = text("com.example.app");
    setInformation(
        "a", dictionary({{"CFBundleIdentifier", identifier}, {"StatusLabel", badge(text("•"))}}));
    setInformation(
        "b", dictionary({{"CFBundleIdentifier", identifier}, {"StatusLabel", text("3")}}));
    setInformation(
        "c", dictionary({{"CFBundleIdentifier", number(3)}, {"StatusLabel", badge(number(4))}}));
    setInformation(
        "d", dictionary({{"CFBundleIdentifier", identifier}, {"StatusLabel", badge(null())}}));
    setInformation("e", array({identifier}));

    const ApplicationStatus nothing{"com.example.app", std::nullopt, std::nullopt};
    EXPECT_THAT(statuses(),
        ElementsAre(ApplicationStatus{"com.example.app", "•", std::nullopt}, nothing,
            ApplicationStatus{}, nothing));
}

TEST_F(MacLaunchServicesTest, withoutTheListThereIsNothingAndTheToolStillRuns)
{
    for (const auto& wrong : {Value{}, null(), text("a"), array({})}) {
        mac.answer("CopyRunningApplicationArray", wrong);
        EXPECT_THAT(statuses(), IsEmpty());
    }
    mac.answer("CopyRunningApplicationArray", array({text("a")}));
    setInformation("a", dictionary({}));
    EXPECT_THAT(statuses(), SizeIs(1));
    mac.removeSymbol("_LSCopyApplicationInformation");
    EXPECT_THAT(statuses(), IsEmpty());

    MacLaunchServices bare{PrivateSymbols{}};
    EXPECT_THAT(bare.runningApplications(), IsEmpty());
    const auto ran = bare.runTool("/bin/echo", {"a", "b"});
    ASSERT_TRUE(ran);
    EXPECT_EQ(ran->standardOutput, "a b\n");
}

}
