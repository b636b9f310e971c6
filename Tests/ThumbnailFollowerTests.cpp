#include "Quorvel/Core/ThumbnailFollower.h"

#include "Quorvel/Core/ThumbnailService.h"
#include "Tests/Support/FakeDesktop.h"
#include "Tests/Support/Matchers.h"

namespace quorvel::test {

namespace {

using Answers = FakeScreenCapture::Answers;

struct ThumbnailFollowerTest : testing::Test {
    FakeDesktop desktop;
    FakeScreenCapture& capture = desktop.screenCapture();
    ProcessID app = desktop.launch();
    ThumbnailService service{desktop.dispatch(), desktop.screenCapture(), desktop.displays()};
    std::vector<WindowID> windows;
    std::map<WindowID, int> pictures;
    std::optional<Subscription> following;

    void open(int count)
    {
        for (int i = 0; i < count; ++i)
            windows.push_back(desktop.open(app, {.frame = {10, 20, 800, 600}}));
    }
    void follow(PictureSize size = PictureSize::popup)
    {
        following = service.follow(
            windows, size, [this](WindowID id, const WindowPicture&, const Rect& frame) {
                EXPECT_EQ(frame, (Rect{10, 20, 800, 600}));
                ++pictures[id];
            });
    }
    /// Every window draws at 50 frames a second.
    void play(Duration time)
    {
        for (auto end = desktop.dispatch().now() + time; desktop.dispatch().now() < end;) {
            for (auto id : windows)
                capture.windowDraws(id);
            desktop.advance(seconds(0.02));
        }
    }
};

}

// Faults: a picture that stays behind; captures of what has not changed; work after the end.
TEST_F(ThumbnailFollowerTest, capturesWhatHasDrawnAndNothingElse)
{
    open(2);
    follow();
    desktop.advance(seconds(5));
    EXPECT_THAT(pictures, ElementsAre(Pair(windows[0], 1), Pair(windows[1], 1)))
        << "the ones there were may be old";

    capture.windowDraws(windows[1]);
    desktop.drain();
    EXPECT_EQ(pictures[windows[1]], 2) << "at once after a pause";
    capture.windowDraws(windows[1]);
    desktop.advance(ThumbnailFollower::kShortestInterval - Duration{1});
    EXPECT_EQ(pictures[windows[1]], 2);
    desktop.advance(Duration{1});
    EXPECT_EQ(pictures[windows[1]], 3) << "what was drawn last is shown in the end";
    desktop.advance(seconds(60));
    EXPECT_THAT(pictures, ElementsAre(Pair(windows[0], 1), Pair(windows[1], 3)));
    EXPECT_EQ(service.cached(windows[1])->size, (Size{200, 150}));

    capture.windowDraws(windows[0]);
    following.reset();
    const auto before = capture.captured().size();
    play(seconds(2));
    EXPECT_THAT(capture.captured(), SizeIs(before));
    EXPECT_THAT(capture.watchedWindows(), SizeIs(0));
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0);
}

// Faults: eight playing windows that take a processor; some of them never shown.
TEST_F(ThumbnailFollowerTest, restsInProportionToWhatACaptureCostsAndTakesTurns)
{
    open(8);
    capture.setCaptures(Answers::once, seconds(0.01));
    follow();
    play(seconds(12));
    const auto most = seconds(12) / (seconds(0.01) * (1 + ThumbnailFollower::kRest));
    EXPECT_LE(capture.captured().size(), std::size_t(most) + 1);
    EXPECT_GE(capture.captured().size(), std::size_t(most) - 8) << "slower than it has to be";
    for (auto id : windows)
        EXPECT_GE(pictures[id], int(most) / 8 - 1);
}

// Faults: pictures that stand still where the system does not tell, or after one lost answer.
TEST_F(ThumbnailFollowerTest, asksEverySecondWhereNothingIsToldAndSurvivesLostAnswers)
{
    open(1);
    capture.setTellsOfDrawing(false);
    follow();
    desktop.advance(seconds(10));
    EXPECT_GE(pictures[windows[0]], 9);
    EXPECT_LE(pictures[windows[0]], 10);

    capture.setCaptures(Answers::never);
    desktop.advance(seconds(60));
    capture.setCaptures(Answers::withFailure);
    desktop.advance(seconds(60));
    pictures.clear();
    capture.setCaptures(Answers::twice);
    desktop.advance(seconds(60));
    EXPECT_GE(pictures[windows[0]], 28) << "each may be late by the rest after a lost one";
    EXPECT_LE(pictures[windows[0]], 60);
}

TEST_F(ThumbnailFollowerTest, capturesAWindowAsLargeAsItIsAndKeepsNoneOfThese)
{
    open(1);
    follow(PictureSize::window);
    desktop.advance(seconds(1));
    EXPECT_EQ(capture.captured().back().configuration, (CaptureConfiguration{800, 600}));
    EXPECT_FALSE(service.cached(windows[0]));
}

}
