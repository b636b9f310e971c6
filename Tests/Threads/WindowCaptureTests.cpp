// Pictures of real windows: with the right colours and size, whatever covers them, with and without
// a compositor, and while the windows change under the capture.
#include <chrono>
#include <cstdlib>
#include <future>
#include <thread>

#include <glib.h>
#include <gtest/gtest.h>
#include <xcb/composite.h>

#include "Hosts/Linux/Drawing/PixelPicture.h"
#include "Hosts/Linux/Loop/GLibDispatch.h"
#include "Hosts/X11/Capture/X11ScreenCapture.h"
#include "Quorvel/Core/ThumbnailService.h"
#include "Tests/Support/OneDisplay.h"
#include "Tests/X11/Support/Client.h"
#include "Tests/X11/Support/Eventually.h"
#include "Tests/X11/Support/WindowManager.h"

namespace quorvel::x11tests {

namespace {

constexpr std::uint32_t kRed = 0xFFC00000;
constexpr std::uint32_t kBlue = 0xFF0000C0;
constexpr std::uint32_t kGreen = 0xFF00C000;
constexpr CaptureConfiguration kLarge{2000, 2000};

/// A picture's pixels, of which those of an opaque window count as opaque.
struct Pixels {
    std::optional<WindowPicture> picture;

    bool exists() const { return picture.has_value(); }
    Size size() const { return picture ? picture->size : Size{}; }
    std::uint32_t at(int x, int y) const
    {
        auto* image
            = dynamic_cast<const xdg::PixelPicture*>(picture ? picture->image.get() : nullptr);
        if (!image || x >= image->width() || y >= image->height())
            return 0;
        auto* surface = image->surface();
        auto* row = cairo_image_surface_get_data(surface)
            + static_cast<std::ptrdiff_t>(y) * cairo_image_surface_get_stride(surface);
        bool isOpaque = cairo_image_surface_get_format(surface) == CAIRO_FORMAT_RGB24;
        return reinterpret_cast<const std::uint32_t*>(row)[x] | (isOpaque ? 0xFF000000 : 0);
    }
};

/// Windows that the server itself paints, with what it knows of their background.
struct WindowCaptureTest : testing::Test {
    XServer server;
    Connection client{server.display()};
    xcb_connection_t* x = client.get();
    xdg::GLibDispatch dispatch;
    xdg::SharedModel model;
    std::uint32_t lastNumber = 0;

    WindowCaptureTest()
    {
        setenv("DISPLAY", server.display().c_str(), 1);
        capture = std::make_unique<xdg::x11::X11ScreenCapture>(model, dispatch);
    }

    xcb_window_t create(xcb_window_t parent, const Frame& frame, std::uint32_t colour)
    {
        auto window = xcb_generate_id(x);
        xcb_create_window(x, XCB_COPY_FROM_PARENT, window, parent, std::int16_t(frame.x),
            std::int16_t(frame.y), std::uint16_t(frame.width), std::uint16_t(frame.height), 0,
            XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL, &colour);
        xcb_map_window(x, window);
        client.sync();
        return window;
    }
    /// Red, its right half blue.
    xcb_window_t createTwoColoured(const Frame& frame)
    {
        auto window = create(client.root(), frame, kRed);
        create(window, {frame.width / 2, 0, frame.width / 2, frame.height}, kBlue);
        return window;
    }

    std::future<Pixels> begin(xcb_window_t window, const CaptureConfiguration& configuration)
    {
        WindowID id{++lastNumber};
        model.write([&](xdg::DesktopModel& desktop) {
            desktop.windows.clear();
            desktop.windows[id].id = id;
            desktop.windows[id].native = window;
        });
        auto promise = std::make_shared<std::promise<Pixels>>();
        capture->getShareableContent([&](auto content) {
            capture->captureImage(content->windows.at(0), configuration,
                [promise](auto picture) { promise->set_value({picture}); });
        });
        return promise->get_future();
    }
    Pixels take(xcb_window_t window, const CaptureConfiguration& configuration = kLarge)
    {
        auto pixels = begin(window, configuration);
        auto hasCome = [&] {
            drawWhatIsExposed();
            return pixels.wait_for(1ms) == std::future_status::ready;
        };
        if (!eventually(hasCome)) {
            ADD_FAILURE() << "no answer";
            return {};
        }
        return pixels.get();
    }
    /// Green, as a client draws that paints its windows itself.
    void drawWhatIsExposed()
    {
        while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(x)}) {
            if (event->response_type == XCB_EXPOSE) {
                auto* expose = reinterpret_cast<xcb_expose_event_t*>(event.get());
                const xcb_rectangle_t area{std::int16_t(expose->x), std::int16_t(expose->y),
                    expose->width, expose->height};
                auto context = xcb_generate_id(x);
                xcb_create_gc(x, context, expose->window, XCB_GC_FOREGROUND, &kGreen);
                xcb_poly_fill_rectangle(x, expose->window, context, 1, &area);
                xcb_free_gc(x, context);
            }
        }
        xcb_flush(x);
    }
    void expectTwoColours(xcb_window_t window)
    {
        auto pixels = take(window, {200, 200});
        EXPECT_EQ(pixels.size(), (Size{200, 150}));
        EXPECT_EQ(pixels.at(10, 75), kRed);
        EXPECT_EQ(pixels.at(99, 0), kRed);
        EXPECT_EQ(pixels.at(100, 149), kBlue);
        EXPECT_EQ(pixels.at(199, 75), kBlue);
    }
    bool isRedirected(xcb_window_t window)
    {
        const Reply<xcb_generic_error_t> error{xcb_request_check(
            x, xcb_composite_name_window_pixmap_checked(x, window, xcb_generate_id(x)))};
        return !error;
    }

    std::unique_ptr<xdg::x11::X11ScreenCapture> capture; // last: its thread ends before the server
};

}

TEST_F(WindowCaptureTest, aCoveredWindowIsShownWholeAndNotRedirectedForLonger)
{
    auto window = createTwoColoured({50, 40, 400, 300});
    expectTwoColours(window);
    create(client.root(), {0, 0, 300, 300}, kGreen);
    expectTwoColours(window);
    // Half of it lies beyond the edge of the screen, where nothing is drawn.
    expectTwoColours(createTwoColoured({-200, 600, 400, 300}));
    EXPECT_FALSE(isRedirected(window));
}

// Most clients draw their windows themselves, when they are told to.
TEST_F(WindowCaptureTest, theClientHasTimeToDrawWhatWasCovered)
{
    auto cover = create(client.root(), {0, 0, 700, 700}, kBlue);
    take(cover); // so that the connection stands
    auto window = create(client.root(), {50, 40, 400, 300}, 0);
    const std::uint32_t changes[] = {XCB_BACK_PIXMAP_NONE, XCB_EVENT_MASK_EXPOSURE};
    xcb_change_window_attributes(x, window, XCB_CW_BACK_PIXMAP | XCB_CW_EVENT_MASK, changes);
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(x, cover, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    client.sync();

    // A client on a busy machine may be late, but not each time.
    EXPECT_TRUE(eventually([&] { return take(window, {40, 30}).at(20, 15) == kGreen; }));
}

TEST_F(WindowCaptureTest, aCompositorMayComeAndGo)
{
    auto window = createTwoColoured({50, 40, 400, 300});
    create(client.root(), {0, 0, 300, 300}, kGreen);
    // What a compositor does, in the eyes of everybody else.
    auto compositor = std::make_unique<Connection>(server.display());
    xcb_composite_redirect_subwindows(
        compositor->get(), compositor->root(), XCB_COMPOSITE_REDIRECT_MANUAL);
    compositor->sync();
    expectTwoColours(window);
    EXPECT_TRUE(isRedirected(window)) << "that is the compositor's";

    auto during = begin(window, kLarge);
    compositor.reset();
    ASSERT_EQ(during.wait_for(kWatchdog), std::future_status::ready);
    EXPECT_TRUE(eventually([&] { return !isRedirected(window); }));
    expectTwoColours(window);
}

TEST_F(WindowCaptureTest, seeThroughWindowsKeepTheirAlpha)
{
    auto* screen = xcb_setup_roots_iterator(xcb_get_setup(x)).data;
    auto depths = xcb_screen_allowed_depths_iterator(screen);
    while (depths.rem > 0 && depths.data->depth != 32)
        xcb_depth_next(&depths);
    ASSERT_GT(depths.rem, 0);
    auto visual = xcb_depth_visuals_iterator(depths.data).data->visual_id;
    auto colormap = xcb_generate_id(x);
    xcb_create_colormap(x, XCB_COLORMAP_ALLOC_NONE, colormap, client.root(), visual);
    auto window = xcb_generate_id(x);
    const std::uint32_t values[] = {0x80400020, 0, colormap};
    xcb_create_window(x, 32, window, client.root(), 10, 10, 64, 64, 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
        XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_COLORMAP, values);
    xcb_map_window(x, window);
    client.sync();

    auto pixels = take(window, {16, 16});
    EXPECT_EQ(pixels.size(), (Size{16, 16}));
    EXPECT_EQ(pixels.at(8, 8), 0x80400020);
}

// Of 4K, so that it comes in several bands; each picture's pixel has to stand for all of its own.
TEST_F(WindowCaptureTest, aLargeWindowIsAveraged)
{
    auto window = create(client.root(), {0, 0, 3840, 2160}, kRed);
    auto tile = xcb_generate_id(x);
    auto context = xcb_generate_id(x);
    auto* screen = xcb_setup_roots_iterator(xcb_get_setup(x)).data;
    xcb_create_pixmap(x, screen->root_depth, tile, window, 2, 2);
    const std::uint32_t black = 0;
    xcb_create_gc(x, context, tile, XCB_GC_FOREGROUND, &black);
    const xcb_rectangle_t all{0, 0, 2, 2};
    xcb_poly_fill_rectangle(x, tile, context, 1, &all);
    const std::uint32_t white = 0xFFFFFF;
    xcb_change_gc(x, context, XCB_GC_FOREGROUND, &white);
    const xcb_rectangle_t diagonal[] = {{0, 0, 1, 1}, {1, 1, 1, 1}};
    xcb_poly_fill_rectangle(x, tile, context, 2, diagonal);
    xcb_change_window_attributes(x, window, XCB_CW_BACK_PIXMAP, &tile);
    xcb_clear_area(x, 0, window, 0, 0, 0, 0);
    create(window, {0, 1080, 3840, 1080}, kBlue);

    auto pixels = take(window, {240, 150});
    EXPECT_EQ(pixels.size(), (Size{240, 135}));
    for (auto corner : {pixels.at(0, 0), pixels.at(239, 0), pixels.at(120, 66)})
        EXPECT_EQ(corner, 0xFF808080);
    EXPECT_EQ(pixels.at(0, 68), kBlue);
    EXPECT_EQ(pixels.at(239, 134), kBlue);
}

TEST_F(WindowCaptureTest, whatIsNotOnTheScreenHasNoPicture)
{
    auto window = createTwoColoured({50, 40, 400, 300});
    xcb_unmap_window(x, window);
    client.sync();
    EXPECT_FALSE(take(window).exists());
    xcb_destroy_window(x, window);
    client.sync();
    EXPECT_FALSE(take(window).exists());
    EXPECT_FALSE(take(client.root()).exists());
    EXPECT_FALSE(take(0xFFFFFF).exists());
    expectTwoColours(createTwoColoured({50, 40, 400, 300}));
}

// Whatever happens between the steps of a capture: each is answered, and nothing stays behind.
TEST_F(WindowCaptureTest, windowsMayDieAndChangeUnderTheCapture)
{
    Desktop desktop{server.display()};
    auto steady = createTwoColoured({50, 40, 400, 300});
    create(client.root(), {0, 0, 300, 300}, kGreen);
    expectTwoColours(steady);
    auto before = desktop.resourcesOf(getpid());
    for (int round = 0; round < 60; ++round) {
        auto window = create(client.root(), {60, 60, 200, 200}, kBlue);
        auto above = create(client.root(), {100, 100, 50, 50}, kRed);
        auto first = begin(window, {100, 100});
        auto second = begin(window, {50, 50});
        std::this_thread::sleep_for(std::chrono::microseconds(round * 37 % 2000));
        const std::uint32_t size[] = {std::uint32_t(1 + round * 53 % 900), 1};
        if (round % 3 == 0)
            xcb_configure_window(
                x, window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
        else if (round % 3 == 1)
            xcb_unmap_window(x, window);
        if (round % 3 != 0 || round % 2 == 0)
            xcb_destroy_window(x, window);
        xcb_destroy_window(x, above);
        client.sync();
        ASSERT_EQ(first.wait_for(kWatchdog), std::future_status::ready);
        ASSERT_EQ(second.wait_for(kWatchdog), std::future_status::ready);
        xcb_destroy_window(x, window);
        client.sync();
    }
    expectTwoColours(steady);
    EXPECT_TRUE(eventually([&] { return desktop.resourcesOf(getpid()) <= before; }))
        << desktop.resourcesOf(getpid()) << " resources instead of " << before;
}

// Pictures come on the capture's thread while the main thread asks for more, gives up and ends.
TEST_F(WindowCaptureTest, theServiceMayEndWhileItsPicturesCome)
{
    const test::OneDisplay displays;
    xcb_composite_redirect_subwindows(x, client.root(), XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    std::vector<WindowID> ids;
    for (std::uint32_t i = 1; i <= 12; ++i) {
        auto window = createTwoColoured({int(10 * i), int(20 * i), 400, 300});
        ids.push_back(WindowID{i});
        model.write([&](xdg::DesktopModel& desktop) {
            auto& record = desktop.windows[WindowID{i}];
            record.id = WindowID{i};
            record.native = window;
            record.frame = {0, 0, 400, 300};
        });
    }
    auto guard = g_timeout_add(1, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
    for (std::size_t wanted = 0; wanted <= ids.size(); wanted += 4) {
        ThumbnailService service{dispatch, *capture, displays};
        std::vector<Subscription> asked;
        std::size_t answered = 0;
        service.prefetch(ids);
        for (auto id : ids)
            asked.push_back(service.thumbnail(id, [&](auto picture) { answered += !!picture; }));
        EXPECT_TRUE(eventually([&] {
            g_main_context_iteration(nullptr, true);
            service.cached(ids.back());
            return answered >= wanted;
        }));
        asked.resize(answered / 2);
    }
    g_source_remove(guard);
}

TEST_F(WindowCaptureTest, thePictureHasTheDecorationAndNotTheShadow)
{
    Desktop desktop{server.display()};
    WindowManager manager{server, desktop, ManagerKind::openbox};
    Client application{server};
    auto window = application.open({.title = "Framed", .frame = {200, 150, 300, 200}});
    ASSERT_TRUE(eventually([&] { return desktop.activeWindow() == window; }));
    auto frame = desktop.frame(window);
    ASSERT_GT(frame.height, 200) << "no decoration";
    auto pixels = take(window);
    EXPECT_EQ(pixels.size(), (Size{double(frame.width), double(frame.height)}));

    application.connection().setNumbers(window, "_GTK_FRAME_EXTENTS", "CARDINAL", {30, 20, 10, 40});
    application.connection().sync();
    pixels = take(window);
    EXPECT_EQ(pixels.size(), (Size{double(frame.width - 50), double(frame.height - 50)}));

    // Minimised: the caller has to do with the picture it has.
    desktop.minimise(window);
    ASSERT_TRUE(eventually([&] { return desktop.isHidden(window); }));
    EXPECT_FALSE(take(window).exists());
}

}
