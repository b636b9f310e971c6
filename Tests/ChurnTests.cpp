// The whole program on a desktop where everything happens at random. Whenever it has settled, the
// bar must show what there is, whatever the order was. QUORVEL_TEST_SEED repeats a round,
// QUORVEL_TEST_ROUNDS and QUORVEL_TEST_FULL make more of them.
#include <cstdio>
#include <cstdlib>

#include "Tests/Support/ChurnRound.h"
#include "Tests/Support/Sanitized.h"
#include "Tests/Support/Seed.h"

namespace quorvel::test {

namespace {

constexpr int kOperationsARound = 1000;
constexpr int kOperationsBetweenRests = 50;
constexpr std::uint32_t kRounds = kIsSanitized ? 5 : 25;
constexpr std::uint32_t kFullRounds = 100;

}

TEST(ChurnTest, wheneverTheDesktopRestsTheBarShowsWhatThereIs)
{
    auto seed = test::seed();
    auto rounds = test::numberFrom(
        "QUORVEL_TEST_ROUNDS", std::getenv("QUORVEL_TEST_FULL") ? kFullRounds : kRounds);
    std::printf("seed %u, %u operations\n", seed, rounds * kOperationsARound);
    for (std::uint32_t i = 0; i < rounds && !testing::Test::HasFailure(); ++i, ++seed) {
        ChurnRound round{seed};
        for (int played = 0; played < kOperationsARound && !testing::Test::HasFailure();) {
            round.play(kOperationsBetweenRests);
            played += kOperationsBetweenRests;
            round.rest();
            SCOPED_TRACE("QUORVEL_TEST_SEED=" + std::to_string(seed) + " QUORVEL_TEST_ROUNDS=1, "
                + std::to_string(played) + " operations");
            auto expected = round.truth();
            round.expectWindows(expected);
            round.expectFocus(expected);
            round.expectBars(expected);
            round.expectNothingLeftBehind();
        }
    }
}

}
