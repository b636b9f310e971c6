#include <gmock/gmock.h>

#include "Hosts/MacOS/Rules/ProgramArguments.h"

namespace quorvel::test {

using testing::ElementsAre;

TEST(MacRules, argumentsAndVersionsAreWhatTheSystemMeans)
{
    EXPECT_THAT(withoutSystemArguments({"-NSTreatUnknownArgumentsAsOpen", "NO", "--set",
                    "barSize=large", "-AppleLanguages", "(ar)", "-NSShowNonLocalizedStrings",
                    "--trace", "-psn_0_12345", "-ApplePersistenceIgnoreState"}),
        ElementsAre("--set", "barSize=large", "--trace"));
    EXPECT_EQ(systemMajorVersion(15), 15);
    EXPECT_EQ(systemMajorVersion(16), 26);
    EXPECT_EQ(systemMajorVersion(26), 26);
    EXPECT_EQ(systemMajorVersion(27), 27);
}

}
