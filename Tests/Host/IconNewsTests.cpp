#include "Hosts/Linux/Desktop/IconNews.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/Support/VirtualDispatch.h"

namespace quorvel::xdg {

using testing::ElementsAre;

// Faults: a program that changes its icon all the time has megabytes read as often; its last icon
// is never shown, or other programs wait for theirs.
TEST(IconNews, ofOneApplicationComeAtOnceAndThenAtAPace)
{
    test::VirtualDispatch dispatch;
    IconNews news{dispatch};
    std::vector<std::string> told;
    auto subscription = news.didChange.subscribe([&](auto& id) { told.push_back(id); });
    auto happens = [&](const std::string& id) {
        news.note(id);
        news.announce();
    };
    for (int i = 0; i < 40; ++i) {
        happens("restless");
        dispatch.advance(seconds(0.01));
    }
    EXPECT_THAT(told, ElementsAre("restless"));
    happens("other");
    EXPECT_THAT(told, ElementsAre("restless", "other"));
    dispatch.advance(seconds(0.2));
    EXPECT_THAT(told, ElementsAre("restless", "other", "restless")) << "the last one";
    dispatch.advance(seconds(10));
    EXPECT_EQ(told.size(), 3U);
    EXPECT_EQ(dispatch.pendingTimers(), 0U);
    happens("restless");
    EXPECT_EQ(told.size(), 4U);
}

}
