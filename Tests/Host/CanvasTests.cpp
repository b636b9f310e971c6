#include "Hosts/Linux/Drawing/CairoCanvas.h"

#include <cmath>
#include <functional>
#include <optional>

#include <gtest/gtest.h>
#include <pango/pangocairo.h>

#include "Hosts/Linux/Drawing/CanvasTools.h"
#include "Hosts/Linux/Drawing/DamageRegion.h"
#include "Hosts/Linux/Drawing/DisplayText.h"
#include "Hosts/Linux/Drawing/IconImage.h"
#include "Hosts/X11/Surface/AlphaShape.h"
#include "Hosts/X11/Surface/PointerTracker.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr Color kWhite = Color::grey(1);
constexpr double kScales[] = {1, 1.5, 2};

/// A surface of points to draw on, and its pixels.
class Paper {
public:
    Paper(double width, double height, double scale_, bool isRightToLeft = false)
        : scale(scale_)
        , surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32,
              static_cast<int>(std::ceil(width * scale_)),
              static_cast<int>(std::ceil(height * scale_))))
        , canvas(surface.get(), scale_, tools, isRightToLeft)
    {
    }

    std::vector<std::uint32_t> pixels()
    {
        cairo_surface_flush(surface.get());
        auto* first = reinterpret_cast<std::uint32_t*>(cairo_image_surface_get_data(surface.get()));
        return {first,
            first
                + cairo_image_surface_get_stride(surface.get()) / 4
                    * cairo_image_surface_get_height(surface.get())};
    }

    std::uint32_t pixel(int x, int y)
    {
        cairo_surface_flush(surface.get());
        auto* row = cairo_image_surface_get_data(surface.get())
            + y * cairo_image_surface_get_stride(surface.get());
        return reinterpret_cast<std::uint32_t*>(row)[x];
    }

    void clear()
    {
        Cairo cairo{cairo_create(surface.get())};
        cairo_set_operator(cairo.get(), CAIRO_OPERATOR_CLEAR);
        cairo_paint(cairo.get());
    }

    /// The smallest box of pixels around everything that is not transparent.
    Rect ink()
    {
        Rect box;
        for (int y = 0; y < cairo_image_surface_get_height(surface.get()); ++y) {
            for (int x = 0; x < cairo_image_surface_get_width(surface.get()); ++x) {
                if (pixel(x, y) >> 24)
                    box = box.united({double(x), double(y), 1, 1});
            }
        }
        return box;
    }

    /// Whether every pixel is either empty or fully covered.
    bool isSharp()
    {
        auto box = ink();
        for (int y = int(box.y); y < int(box.maxY()); ++y) {
            for (int x = int(box.x); x < int(box.maxX()); ++x) {
                auto alpha = pixel(x, y) >> 24;
                if (alpha != 0 && alpha != 255)
                    return false;
            }
        }
        return true;
    }

    CanvasTools tools;
    double scale;
    CairoSurface surface;
    CairoCanvas canvas;
};

struct SquareIcon : IconImage {
    cairo_surface_t* rendered(int pixels) const override
    {
        asked = pixels;
        surface.reset(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, pixels, pixels));
        Cairo cairo{cairo_create(surface.get())};
        cairo_paint(cairo.get());
        return surface.get();
    }
    mutable int asked = 0;
    mutable CairoSurface surface;
};

Rect inkOfText(std::string_view text, const TextStyle& style, Rect box, double scale = 1,
    bool isRightToLeft = false)
{
    Paper paper{300, 60, scale, isRightToLeft};
    paper.canvas.drawText(text, box, style);
    return paper.ink();
}

TextStyle whiteText(TextAlignment alignment = TextAlignment::leading)
{
    TextStyle style;
    style.color = kWhite;
    style.alignment = alignment;
    return style;
}

}

TEST(CairoCanvas, edgesLieOnPixelsAtEveryScaleAndHairlinesStay)
{
    for (double scale : kScales) {
        Paper paper{40, 40, scale};
        paper.canvas.translate(0.3, 0.7);
        paper.canvas.fill({3.3, 2.1, 10.4, 5.2}, kWhite);
        EXPECT_TRUE(paper.isSharp()) << scale;

        Paper line{40, 40, scale};
        line.canvas.fill({0, 7.4, 40, 0.2}, kWhite);
        EXPECT_TRUE(line.isSharp());
        EXPECT_EQ(line.ink().height, 1) << scale;

        Paper neighbours{40, 40, scale}; // no gap and no overlap between what touches
        neighbours.canvas.fill({0, 0, 10.3, 10}, kWhite.withAlpha(0.5));
        neighbours.canvas.fill({10.3, 0, 9.7, 10}, kWhite.withAlpha(0.5));
        for (int x = 0; x < int(20 * scale); ++x)
            EXPECT_EQ(neighbours.pixel(x, 2) >> 24, neighbours.pixel(0, 2) >> 24) << x;
    }
}

TEST(CairoCanvas, strokesLieInsideTheEdge)
{
    for (double scale : kScales) {
        Paper paper{40, 40, scale};
        paper.canvas.strokeRounded({4, 4, 20, 12}, 0, 1, kWhite);

        EXPECT_EQ(paper.ink(), (Rect{4 * scale, 4 * scale, 20 * scale, 12 * scale}));
        EXPECT_TRUE(paper.isSharp());
        auto inside = static_cast<int>(std::round(4 * scale) + std::round(scale));
        EXPECT_EQ(paper.pixel(inside, inside), 0u);
        EXPECT_NE(paper.pixel(inside - 1, inside), 0u);
    }
}

// Faults: a magnification that moves its own centre, or that goes on after `restore`; an icon made
// anew for each step of an animation; a clip whose corners are not round.
TEST(CairoCanvas, magnifiesAboutAPointAndClipsRoundCorners)
{
    for (double scale : kScales) {
        Paper paper{80, 80, scale};
        auto icon = std::make_shared<SquareIcon>();
        paper.canvas.save();
        paper.canvas.translate(10, 10);
        paper.canvas.magnify(2, {20, 20});
        paper.canvas.drawImage(icon, {15, 15, 10, 10});
        EXPECT_EQ(icon->asked, std::lround(10 * scale));
        EXPECT_NEAR(paper.ink().centre().x, 30 * scale, 1);
        EXPECT_NEAR(paper.ink().width, 20 * scale, 2);
        paper.canvas.restore();

        Paper round{40, 40, scale};
        round.canvas.clipRounded({0, 0, 40, 40}, 10);
        round.canvas.fill({0, 0, 40, 40}, kWhite);
        EXPECT_EQ(round.pixel(0, 0), 0u);
        EXPECT_EQ(round.pixel(int(20 * scale), 0), 0xffffffff);
    }
}

// Faults: a symbol that is not drawn at all, that leaves its box, or that leans to one side.
TEST(CairoCanvas, symbolsFillTheirBoxAndMirrorEachOther)
{
    for (double scale : kScales) {
        for (auto symbol : {Symbol::menuGrid, Symbol::close, Symbol::chevronUp, Symbol::showDesktop,
                 Symbol::checkmark, Symbol::magnifyingGlass, Symbol::clear, Symbol::appDashed,
                 Symbol::lockShield, Symbol::figureStand, Symbol::display,
                 Symbol::checkmarkCircle}) {
            Paper paper{30, 30, scale};
            paper.canvas.drawSymbol(symbol, {5, 5, 16, 16}, kWhite);
            EXPECT_GT(std::max(paper.ink().width, paper.ink().height), 8 * scale) << int(symbol);
            EXPECT_TRUE((Rect{4 * scale, 4 * scale, 18 * scale, 18 * scale}.contains(paper.ink())));
        }
        Paper left{16, 16, scale};
        Paper right{16, 16, scale};
        left.canvas.drawSymbol(Symbol::chevronLeft, {0, 0, 16, 16}, kWhite);
        right.canvas.drawSymbol(Symbol::chevronRight, {0, 0, 16, 16}, kWhite);
        auto last = int(16 * scale) - 1;
        EXPECT_FALSE(left.ink().isEmpty());
        for (int y = 0; y <= last; ++y) {
            for (int x = 0; x <= last; ++x)
                EXPECT_NEAR(left.pixel(x, y) >> 24, right.pixel(last - x, y) >> 24, 8)
                    << x << ',' << y;
        }
    }
}

// Faults: a corner of garbage, a hole that is closed, rows that overlap; the dark rim that a half
// transparent edge has when it is shown as it is.
TEST(AlphaShape, isWhatIsMoreThereThanNot)
{
    Paper paper{20, 20, 1};
    paper.canvas.fillRounded({0, 0, 20, 16}, 6, kWhite);
    paper.canvas.fill({8, 16, 4, 4}, kWhite.withAlpha(0.6));
    paper.canvas.fill({0, 16, 4, 4}, kWhite.withAlpha(0.4)); // a shadow
    auto shape = opaqueRectangles(paper.surface.get());
    std::vector<std::vector<int>> covered(20, std::vector<int>(20));
    for (auto& part : shape) {
        for (int y = part.y; y < part.y + part.height; ++y) {
            for (int x = part.x; x < part.x + part.width; ++x)
                ++covered[std::size_t(y)][std::size_t(x)];
        }
    }
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 20; ++x)
            EXPECT_EQ(covered[std::size_t(y)][std::size_t(x)], paper.pixel(x, y) >> 24 >= 128)
                << x << ',' << y;
    }
    EXPECT_LE(shape.size(), 14u); // not one for each row

    Paper flat{20, 20, 1};
    flatten(paper.surface.get(), flat.surface.get(), {8, 16, 4, 4});
    EXPECT_EQ(flat.pixel(8, 16), 0xffffffff);
    EXPECT_EQ(flat.pixel(2, 2), 0u);
}

TEST(CairoCanvas, damageIsClearedAndNothingOutsideIsTouched)
{
    Paper paper{20, 20, 1};
    paper.canvas.fill({0, 0, 20, 20}, kWhite);
    paper.canvas.beginDamage({5, 5, 5, 5});
    EXPECT_EQ(paper.pixel(5, 5), 0u);
    paper.canvas.save(); // a view that forgets to restore
    paper.canvas.clip({0, 0, 1, 1});
    paper.canvas.beginOpacity(0.5);
    paper.canvas.endDamage();

    EXPECT_EQ(paper.pixel(4, 5), 0xffffffff);
    paper.canvas.beginDamage({10, 10, 5, 5});
    paper.canvas.beginOpacity(0.5);
    paper.canvas.fill({0, 0, 20, 20}, kWhite);
    paper.canvas.fill({0, 0, 20, 20}, kWhite); // one group: twice is no more than once
    paper.canvas.endOpacity();
    paper.canvas.endDamage();
    EXPECT_NEAR(paper.pixel(12, 12) >> 24, 128, 1);
    EXPECT_EQ(paper.pixel(15, 15), 0xffffffff);
}

TEST(CairoCanvas, iconsAreRenderedAtDevicePixels)
{
    for (double scale : kScales) {
        Paper paper{40, 40, scale};
        auto icon = std::make_shared<SquareIcon>();
        paper.canvas.drawImage(icon, {3, 5, 17, 17});

        EXPECT_EQ(icon->asked, std::lround(17 * scale));
        EXPECT_TRUE(paper.isSharp()); // not resampled on the way
        EXPECT_EQ(paper.ink().width, icon->asked);
    }
    Paper paper{10, 10, 1};
    paper.canvas.drawImage(nullptr, {0, 0, 5, 5});
    EXPECT_TRUE(paper.ink().isEmpty());
}

TEST(CairoCanvas, titlesShareABaselineWhateverTheirLetters)
{
    Rect box{0, 0, 200, 40};
    auto plain = inkOfText("nnn", whiteText(), box);
    auto deep = inkOfText("ngy", whiteText(), box);

    EXPECT_EQ(plain.y, deep.y);
    EXPECT_GT(deep.maxY(), plain.maxY());
    EXPECT_NEAR(inkOfText("Mx", whiteText(), box).centre().y, 20, 2.5);
    EXPECT_NEAR(inkOfText("nnn", whiteText(), box, 2).width, 2 * plain.width, 3);
}

TEST(CairoCanvas, textAlignsByTheInterfacesDirectionAndEndsInAnEllipsis)
{
    Rect box{20, 0, 200, 40};
    EXPECT_NEAR(inkOfText("abc", whiteText(), box).x, 20, 2);
    EXPECT_NEAR(inkOfText("abc", whiteText(TextAlignment::trailing), box).maxX(), 220, 2);
    EXPECT_NEAR(inkOfText("abc", whiteText(TextAlignment::centre), box).centre().x, 120, 2);
    EXPECT_NEAR(inkOfText("שלום", whiteText(), box).x, 20, 2);
    EXPECT_NEAR(inkOfText("abc", whiteText(), box, 1, true).maxX(), 220, 2);
    EXPECT_NEAR(inkOfText("שלום", whiteText(), box, 1, true).maxX(), 220, 2);
    EXPECT_NEAR(inkOfText("שלום", whiteText(TextAlignment::trailing), box, 1, true).x, 20, 2);

    Rect narrow{20, 0, 60, 40};
    std::string endless(1'000'000, 'w');
    auto cut = inkOfText(endless, whiteText(), narrow);
    EXPECT_LE(cut.maxX(), 81);
    EXPECT_GE(cut.maxX(), 60);
    auto whole = whiteText();
    whole.elide = Elide::none;
    EXPECT_LE(inkOfText(endless, whole, narrow).maxX(), 80); // clipped instead
}

struct DrawnTitle {
    std::string text;
    TextStyle style;
    int width = 0; ///< pixels
};

/// In the language that the locale C comes to.
PangoContextHandle pangoContext()
{
    PangoContextHandle context{pango_font_map_create_context(pango_cairo_font_map_get_default())};
    pango_context_set_language(context.get(), pango_language_from_string("en"));
    return context;
}

/// What Pango draws by itself, in a box from the left end of the paper.
void drawWithPango(Paper& paper, const DrawnTitle& title, double height)
{
    auto& style = title.style;
    auto context = pangoContext();
    PangoLayoutHandle layout{pango_layout_new(context.get())};
    PangoFontHandle font{pango_font_description_from_string(
        style.weight == FontWeight::semibold ? "Sans Semi-Bold" : "Sans")};
    pango_font_description_set_absolute_size(font.get(), style.size * paper.scale * PANGO_SCALE);
    pango_layout_set_font_description(layout.get(), font.get());
    pango_layout_set_ellipsize(layout.get(), PANGO_ELLIPSIZE_END);
    pango_layout_set_width(layout.get(), title.width * PANGO_SCALE);
    pango_layout_set_text(layout.get(), title.text.c_str(), -1);
    auto* line = pango_layout_get_line_readonly(layout.get(), 0);
    PangoRectangle logical{};
    pango_layout_line_get_extents(line, nullptr, &logical);
    double room = title.width - static_cast<double>(logical.width) / PANGO_SCALE;

    auto metrics = paper.tools.shaper.metrics(style.size, style.weight, paper.scale);
    Cairo cairo{cairo_create(paper.surface.get())};
    cairo_set_source_rgba(cairo.get(), 1, 1, 1, style.color.alpha);
    cairo_move_to(cairo.get(), style.alignment == TextAlignment::trailing ? std::round(room) : 0,
        std::round((height - metrics.height()) / 2 + metrics.ascent));
    pango_cairo_show_layout_line(cairo.get(), line);
}

/// Anything that decides where a title is cut, and each style with the lines of the one before it
/// still known.
TEST(CairoCanvas, aTitleIsCutOffWherePangoCutsIt)
{
    constexpr double kHeight = 24;
    std::vector<TextStyle> styles(3, whiteText());
    styles[1].weight = FontWeight::semibold;
    styles[1].size += 2;
    styles[2].alignment = TextAlignment::trailing;
    for (double scale : {1.0, 1.5}) {
        Paper drawn{160, kHeight, scale};
        Paper expected{160, kHeight, scale};
        for (DrawnTitle title; auto& text :
            {"Document 12 - App 3", "office: fi ffl AV To", "e\u0301te\u0301 a\u0323\u0308x",
                "Письмо от друга", "a b  c   d", "iiiiiiiiiiiiiiiiiiii", "日本語のタイトル",
                "mail 日本 mail", "שלום עולם mail", "mail שלום עולם", "\u202B\u202Chello there",
                "😀 party 👩‍👩‍👧 time", "12:30 — 99 %", "नमस्ते दुनिया", "x"}) {
            for (auto& style : styles) {
                for (int width = 1; width < 150 * scale; width += 13) {
                    for (auto* paper : {&drawn, &expected})
                        paper->clear();
                    title = {text, style, width};
                    drawn.canvas.drawText(text, {0, 0, width / scale, kHeight}, style);
                    drawWithPango(expected, title, kHeight * scale);
                    ASSERT_EQ(drawn.pixels(), expected.pixels()) << text << " in " << width;
                }
            }
        }
    }
}

TEST(TextShaper, aLineIsAsHighAsPangoSays)
{
    auto context = pangoContext();
    TextShaper shaper;
    for (auto* family : {"Sans", "Serif", "Monospace"}) {
        shaper.setFont(family);
        for (double size = 8; size < 48; size += 0.25) {
            PangoFontHandle font{pango_font_description_from_string(family)};
            pango_font_description_set_absolute_size(font.get(), size * PANGO_SCALE);
            auto* expected = pango_context_get_metrics(context.get(), font.get(), nullptr);
            auto line = shaper.metrics(size, FontWeight::regular, 1);
            EXPECT_EQ(line.ascent * PANGO_SCALE, pango_font_metrics_get_ascent(expected)) << size;
            EXPECT_EQ(line.descent * PANGO_SCALE, pango_font_metrics_get_descent(expected)) << size;
            pango_font_metrics_unref(expected);
        }
    }
}

TEST(PangoText, whatIsMeasuredFitsWithoutAnEllipsis)
{
    for (double scale : kScales) {
        Paper paper{400, 40, scale};
        PangoText text{paper.tools.shaper, scale};
        for (std::string_view title : {"Mail", "Terminal: ~/src", "fjord WAVE", "שלום עולם"}) {
            auto style = whiteText();
            auto size = text.measure(title, style);
            auto exact = paper.tools.shaper.shape(title, style, scale).width();
            auto fitted = paper.tools.shaper.shape(title, style, scale, size.width * scale);
            EXPECT_EQ(fitted.width(), exact) << title << " at " << scale;
            EXPECT_GT(size.height, style.size);
        }
    }
}

TEST(DisplayText, anyBytesBecomeOneLineOfText)
{
    EXPECT_EQ(displayText("a\nb\tc\x7f", 100), "a b c ");
    EXPECT_EQ(displayText("a\u2028b\u0085c", 100), "a b c");
    EXPECT_EQ(displayText("x\xff\xc3y\xe2\x82", 100), "x\uFFFD\uFFFDy\uFFFD\uFFFD");
    EXPECT_EQ(displayText(std::string_view{"a\0b", 3}, 100), "a b");
    EXPECT_EQ(displayText("äöü", 3), "äöü");
    EXPECT_EQ(displayText("äöüß", 3), "äöü…");
    EXPECT_EQ(displayText("", 0), "");
}

TEST(DamageRegion, mergesWhatTouchesAndKeepsWhatIsApart)
{
    constexpr Rect bounds{0, 0, 10'000, 10'000};
    DamageRegion damage;
    damage.add({0, 0, 10.2, 10});
    damage.add({500, 0, 10, 10});
    auto apart = damage.take(bounds);
    ASSERT_EQ(apart.size(), 2u);
    EXPECT_EQ(apart[0], (Rect{0, 0, 11, 10}));
    EXPECT_TRUE(damage.isEmpty());

    damage.add({0, 0, 10, 10});
    damage.add({20, 0, 10, 10});
    damage.add({5, 0, 20, 10}); // joins the two others
    EXPECT_EQ(damage.take(bounds), std::vector{(Rect{0, 0, 30, 10})});

    for (int i = 0; i < 1000; ++i)
        damage.add({i * 100.0, (i % 7) * 100.0, 1, 1});
    EXPECT_LE(damage.take(bounds).size(), 16u);
}

namespace {

struct Listener : SurfaceClient {
    void paint(Canvas&, const Rect&) override { }
    void pointerEvent(const PointerEvent& event) override { heard.push_back(event); }
    void pointerLost() override { ++losses; }
    void scrollEvent(const ScrollEvent& event) override { scrolled += event.deltaY; }
    void surfaceDidResize(Size) override { }

    std::vector<PointerAction> actions()
    {
        std::vector<PointerAction> result;
        for (auto& event : std::exchange(heard, {}))
            result.push_back(event.action);
        return result;
    }

    std::vector<PointerEvent> heard;
    double scrolled = 0;
    int losses = 0;
};

class PointerTrackerTest : public testing::Test {
protected:
    using Action = PointerAction;

    PointerTrackerTest()
    {
        tracker.setScale(2);
        tracker.setClient(&client);
    }
    void crossing(std::uint8_t type, std::uint8_t mode, std::uint8_t detail = 0)
    {
        xcb_enter_notify_event_t event{};
        event.response_type = type;
        event.mode = mode;
        event.detail = detail;
        tracker.handle(reinterpret_cast<xcb_generic_event_t*>(&event));
    }
    void input(std::uint8_t type, int button, std::int16_t x = 10, std::uint16_t state = 0)
    {
        xcb_button_press_event_t event{};
        event.response_type = type;
        event.detail = static_cast<xcb_button_t>(button);
        event.event_x = x;
        event.state = state;
        tracker.handle(reinterpret_cast<xcb_generic_event_t*>(&event));
    }

    Listener client;
    PointerTracker tracker{[](auto state) { return std::uint64_t{state} << 8; }};
};

}

TEST_F(PointerTrackerTest, motionIsDeliveredOncePerTurnAndBeforeAPress)
{
    crossing(XCB_ENTER_NOTIFY, XCB_NOTIFY_MODE_NORMAL);
    for (std::int16_t x = 0; x < 100; ++x)
        input(XCB_MOTION_NOTIFY, 0, x);
    tracker.endTurn();
    ASSERT_EQ(client.heard.size(), 2u);
    EXPECT_EQ(client.heard.back().location.x, 49.5);

    client.heard.clear();
    input(XCB_MOTION_NOTIFY, 0, 40);
    input(XCB_BUTTON_PRESS, 3, 40);
    input(XCB_BUTTON_RELEASE, 3, 40);
    EXPECT_EQ(client.actions(), (std::vector{Action::moved, Action::pressed, Action::released}));
    input(XCB_BUTTON_PRESS, 4);
    input(XCB_BUTTON_PRESS, 5);
    input(XCB_BUTTON_PRESS, 4);
    EXPECT_EQ(client.scrolled, 1);
    EXPECT_TRUE(client.heard.empty());
}

TEST_F(PointerTrackerTest, grabsAndInferiorsDoNotMakeThePointerLeave)
{
    crossing(XCB_ENTER_NOTIFY, XCB_NOTIFY_MODE_NORMAL);
    crossing(XCB_LEAVE_NOTIFY, XCB_NOTIFY_MODE_GRAB);
    crossing(XCB_ENTER_NOTIFY, XCB_NOTIFY_MODE_UNGRAB);
    crossing(XCB_LEAVE_NOTIFY, XCB_NOTIFY_MODE_NORMAL, XCB_NOTIFY_DETAIL_INFERIOR);
    EXPECT_EQ(client.actions(), std::vector{Action::entered});

    crossing(XCB_LEAVE_NOTIFY, XCB_NOTIFY_MODE_UNGRAB);
    EXPECT_EQ(client.actions(), std::vector{Action::exited});

    input(XCB_BUTTON_PRESS, 3);
    client.heard.clear();
    tracker.lose(); // to the menu that it opened
    input(XCB_MOTION_NOTIFY, 0, 10);
    input(XCB_BUTTON_RELEASE, 3);
    tracker.endTurn();
    EXPECT_TRUE(client.heard.empty()) << "the bar believes that the pointer is on it";
    crossing(XCB_ENTER_NOTIFY, XCB_NOTIFY_MODE_UNGRAB);
    EXPECT_EQ(client.actions(), std::vector{Action::entered});
}

TEST_F(PointerTrackerTest, whoTakesThePlaceOfAnotherHasThePointerAndHearsWhatIsHeld)
{
    input(XCB_BUTTON_PRESS, 1);
    client.heard.clear();
    Listener next;
    tracker.setClient(&next);
    EXPECT_EQ(client.losses, 1);
    EXPECT_EQ(next.actions(), std::vector{Action::entered});

    input(XCB_BUTTON_PRESS, 3, 10, XCB_BUTTON_MASK_1);
    EXPECT_TRUE(next.heard.back().held->contains(PointerButton::primary));
    EXPECT_FALSE(next.heard.back().held->contains(PointerButton::secondary));
    EXPECT_EQ(next.heard.back().modifiers, std::uint64_t{XCB_BUTTON_MASK_1} << 8);
    tracker.lose();
    EXPECT_EQ(next.losses, 1);
}

}
