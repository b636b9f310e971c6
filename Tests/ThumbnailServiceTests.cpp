#include "Quorvel/Core/ThumbnailService.h"

#include "Quorvel/Core/ThumbnailCache.h"
#include "Tests/Support/FakeDesktop.h"
#include "Tests/Support/Matchers.h"

namespace quorvel::test {

namespace {

using Answers = FakeScreenCapture::Answers;

struct ThumbnailServiceTest : testing::Test {
    FakeDesktop desktop;
    FakeScreenCapture& capture = desktop.screenCapture();
    ProcessID app = desktop.launch();
    std::optional<ThumbnailService> service;
    std::vector<Subscription> asked;
    std::vector<std::optional<WindowPicture>> answers;

    ThumbnailServiceTest()
    {
        service.emplace(desktop.dispatch(), desktop.screenCapture(), desktop.displays());
    }

    void ask(WindowID id)
    {
        asked.push_back(
            service->thumbnail(id, [this](auto picture) { answers.push_back(picture); }));
    }
    std::vector<WindowID> openWindows(int count, Size size = {800, 600})
    {
        std::vector<WindowID> ids;
        for (int i = 0; i < count; ++i)
            ids.push_back(desktop.open(app, {.frame = Rect::from({}, size)}));
        return ids;
    }
    /// How long ago what is kept of the window was captured; absent if nothing is.
    std::optional<Duration> ageOfCached(WindowID id)
    {
        auto picture = service->cached(id);
        if (!picture)
            return {};
        auto& fake = dynamic_cast<const FakePicture&>(*picture->image);
        EXPECT_EQ(fake.window, id);
        return desktop.dispatch().now() - fake.at;
    }
};

}

TEST_F(ThumbnailServiceTest, aPictureIsFreshForHalfAMinuteAndKeptForLonger)
{
    auto window = openWindows(1).front();
    EXPECT_FALSE(service->cached(window));
    ask(window);
    EXPECT_THAT(answers, SizeIs(0)) << "the answer never comes inside the call";
    desktop.drain();
    ASSERT_THAT(answers, SizeIs(1));
    ASSERT_TRUE(answers.front());
    EXPECT_EQ(answers.front()->size, (Size{200, 150}));

    desktop.advance(seconds(30) - Duration{1});
    ask(window);
    desktop.drain();
    EXPECT_THAT(capture.captured(), SizeIs(1));
    EXPECT_EQ(capture.contentRequests(), 1);
    desktop.advance(Duration{1});
    ask(window);
    desktop.drain();
    EXPECT_THAT(capture.captured(), SizeIs(2));

    // Whatever goes wrong, the old picture is the answer.
    desktop.advance(seconds(100));
    capture.setCaptures(Answers::withFailure);
    ask(window);
    capture.setContent(Answers::withFailure);
    desktop.advance(seconds(3));
    ask(window);
    capture.setContent(Answers::once);
    desktop.close(window);
    ask(window);
    ask(WindowID{4711});
    desktop.drain();
    ASSERT_THAT(answers, SizeIs(7));
    for (std::size_t i = 3; i < 6; ++i)
        EXPECT_EQ(answers[i]->image, answers[2]->image) << i;
    EXPECT_FALSE(answers[6]);
    EXPECT_EQ(ageOfCached(window), seconds(103));
}

TEST_F(ThumbnailServiceTest, capturesThatStartTogetherShareOneQueryAndItsAnswerServesForTwoSeconds)
{
    auto windows = openWindows(10);
    capture.setContent(Answers::once, seconds(0.1));
    for (auto id : windows)
        ask(id);
    desktop.advance(seconds(0.05));
    auto late = openWindows(1).front();
    ask(late);
    desktop.advance(seconds(0.05));
    desktop.drain();

    EXPECT_EQ(capture.contentRequests(), 1);
    EXPECT_THAT(answers, SizeIs(11));
    EXPECT_FALSE(answers.back()) << "it was not there when the query began";

    desktop.advance(seconds(2) - Duration{1});
    ask(late);
    EXPECT_EQ(capture.contentRequests(), 1);
    desktop.advance(Duration{1});
    ask(late);
    EXPECT_EQ(capture.contentRequests(), 2);
}

TEST_F(ThumbnailServiceTest, prefetchCapturesWhatHasNoFreshPictureOnce)
{
    auto windows = openWindows(3);
    ask(windows[1]);
    desktop.drain();
    capture.setContent(Answers::once, seconds(0.1));
    desktop.advance(seconds(5));

    service->prefetch({windows[0], windows[1], windows[0], windows[2]});
    desktop.advance(seconds(0.1));
    EXPECT_THAT(capture.capturedWindows(), ElementsAre(windows[1], windows[0], windows[2]));
    EXPECT_TRUE(service->cached(windows[2]));

    service->prefetch(windows);
    service->prefetch({});
    EXPECT_EQ(capture.contentRequests(), 2);
}

TEST_F(ThumbnailServiceTest, keepsFiftyPicturesAndDropsTheOldestAtEachStore)
{
    auto windows = openWindows(51);
    for (int i = 0; i < 50; ++i) {
        service->prefetch({windows[i]});
        desktop.advance(seconds(1));
    }
    EXPECT_TRUE(service->cached(windows[0]));
    service->prefetch({windows[50]});
    EXPECT_FALSE(service->cached(windows[0]));
    EXPECT_TRUE(service->cached(windows[1]));

    // A window that has a picture already costs the oldest its place too.
    desktop.advance(seconds(1));
    service->prefetch({windows[15]});
    EXPECT_EQ(ageOfCached(windows[15]), Duration::zero());
    EXPECT_FALSE(service->cached(windows[1]));
    EXPECT_TRUE(service->cached(windows[2]));
}

TEST_F(ThumbnailServiceTest, picturesAreNoLargerThanAPopupShowsThem)
{
    desktop.model().displays.front().scale = 2;
    for (auto size : {Size{3840, 2160}, {300, 2000}, {100.9, 50.5}, {0, 10}, {1e9, 1}}) {
        service->prefetch(openWindows(1, size));
        desktop.advance(seconds(2)); // or the next window would not be listed
    }

    std::vector<CaptureConfiguration> asConfigured;
    for (auto& captured : capture.captured())
        asConfigured.push_back(captured.configuration);
    EXPECT_THAT(asConfigured,
        ElementsAre(CaptureConfiguration{480, 270}, CaptureConfiguration{45, 300},
            CaptureConfiguration{100, 50}, CaptureConfiguration{1, 10},
            CaptureConfiguration{480, 1}));
}

// A system that gives larger pictures than asked for must not fill the memory.
TEST(ThumbnailCache, isBoundedInBytesOfPixels)
{
    ThumbnailCache cache;
    constexpr Instant start{};
    for (std::uint32_t i = 0; i < 6; ++i)
        cache.store(WindowID{i}, {nullptr, {1920, 1080}}, start + seconds(i));

    EXPECT_FALSE(cache.ofAnyAge(WindowID{1}));
    EXPECT_TRUE(cache.ofAnyAge(WindowID{2}));
    cache.store(WindowID{9}, {nullptr, {7680, 4320}}, start + seconds(9));
    EXPECT_FALSE(cache.ofAnyAge(WindowID{5}));
    EXPECT_TRUE(cache.ofAnyAge(WindowID{9})) << "the newest stays, whatever its size";
}

TEST_F(ThumbnailServiceTest, whoNoLongerWantsAPictureHearsNothingAndNothingIsKeptForHim)
{
    auto windows = openWindows(2);
    capture.setCaptures(Answers::once, seconds(0.1));
    ask(windows[0]);
    ask(windows[1]);
    asked.front() = {};
    desktop.advance(seconds(1));

    EXPECT_THAT(answers, SizeIs(1));
    EXPECT_FALSE(service->cached(windows[0]));

    ask(windows[1]); // fresh: answered on the next turn, unless dropped before
    asked.clear();
    desktop.drain();
    EXPECT_THAT(answers, SizeIs(1));
}

TEST_F(ThumbnailServiceTest, answersThatComeTwiceNeverOrTooLateDoNoHarm)
{
    auto windows = openWindows(3);
    capture.setContent(Answers::twice);
    capture.setCaptures(Answers::twice);
    ask(windows[0]);
    desktop.drain();
    EXPECT_THAT(answers, SizeIs(1));

    // A query that is never answered stops nobody for good.
    desktop.advance(seconds(3));
    capture.setContent(Answers::never);
    ask(windows[1]);
    desktop.advance(seconds(5));
    EXPECT_THAT(answers, SizeIs(2));
    capture.setContent(Answers::once, seconds(6));
    ask(windows[1]);
    desktop.advance(seconds(5));
    capture.setContent(Answers::once);
    ask(windows[1]);
    desktop.advance(seconds(1));
    EXPECT_THAT(answers, SizeIs(4));
    EXPECT_TRUE(answers.back());

    capture.setCaptures(Answers::once, seconds(1));
    ask(windows[2]);
    service->prefetch({windows[2]});
    service.reset();
    desktop.advance(seconds(10));
    EXPECT_THAT(answers, SizeIs(4));
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0U);
}

}
