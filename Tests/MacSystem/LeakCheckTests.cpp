#include <gmock/gmock.h>

#include "Tests/MacSystem/Support/Objects.h"
#include "Tests/MacSystem/Support/Values.h"

namespace quorvel::test {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// If these did not hold, no other test here could find a leak.
TEST(LeakCheck, tellsWhatWasNotReleasedAndWhatWasReleasedTwice)
{
    auto& heap = Heap::shared();
    CFStringRef leaked = createString("leaked");
    CFStringRef over = createString("over");
    CFRelease(over);
    CFRelease(over);
    EXPECT_THAT(heap.takeReport(),
        ElementsAre(HasSubstr("after its release: string \"over\""),
            HasSubstr("not released: string \"leaked\"")));
    (void)leaked;

    {
        const auto list = array({text("a"), number(1)});
    }
    EXPECT_THAT(heap.takeReport(), IsEmpty()) << "a list releases what is in it";

    CFRetain(array({text("b")}).get());
    EXPECT_THAT(heap.takeReport(),
        ElementsAre(HasSubstr("string \"b\""), HasSubstr("not released: array of 1")))
        << "and keeps it while it is leaked itself";

    CFRelease(kCFBooleanTrue);
    EXPECT_THAT(heap.takeReport(), ElementsAre(HasSubstr("unequally often: true")));
}

}
