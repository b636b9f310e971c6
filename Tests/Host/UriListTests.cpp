#include "Hosts/Linux/Drawing/UriList.h"

#include <gmock/gmock.h>

namespace quorvel::xdg::x11 {

using testing::ElementsAre;
using testing::IsEmpty;

// Faults: a name with blanks or accents that is not found, another machine's file taken for one of
// this, a comment opened, a name cut off by a byte that no name holds.
TEST(UriList, givesThePathsOfFilesOfThisMachine)
{
    EXPECT_THAT(localPaths("# files\r\n"
                           "file:///a%20b/%c3%A9\r\n"
                           "file://localhost/c\n"
                           "FILE://Desk/d%231%3F\r\n"
                           "file:/e",
                    "desk"),
        ElementsAre("/a b/\xc3\xa9", "/c", "/d#1?", "/e"));
    EXPECT_THAT(localPaths({"file:///old\0", 12}, ""), ElementsAre("/old"));
    EXPECT_THAT(
        localPaths("file://elsewhere/a\r\nhttp://desk/b\r\n/c\r\nfile:d\r\nfile://desk", "desk"),
        IsEmpty());
    EXPECT_THAT(
        localPaths(
            "file:///a%\r\nfile:///b%2\r\nfile:///c%zz\r\nfile:///d%00\r\nfile:///e%2Ff", ""),
        IsEmpty());
}

// Fault: a program that hands over a million files fills the memory, or has a part of them opened.
TEST(UriList, takesNothingOfAListThatIsTooLong)
{
    std::string list;
    for (std::size_t i = 0; i < uriListLimits::files; ++i)
        list += "file:///f\n";
    EXPECT_EQ(localPaths(list, "").size(), uriListLimits::files);
    EXPECT_THAT(localPaths(list + "file:///f", ""), IsEmpty());
    EXPECT_THAT(localPaths("file:///" + std::string(uriListLimits::bytes, 'f'), ""), IsEmpty());
}

}
