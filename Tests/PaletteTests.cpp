#include "Quorvel/Views/Kit/Palette.h"

#include "Quorvel/Core/LaunchPermissionCenter.h"
#include "Quorvel/Core/PermissionsGateModel.h"
#include "Quorvel/Views/BarBackground.h"
#include "Quorvel/Views/PermissionsGatePanel.h"
#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

namespace {

struct PaletteTest : ThreeWindows {
    /// Text and symbols, and what is too small to be anything but a mark, against the fills below.
    void expectContrast(const FakePanel& surface, const Palette& palette)
    {
        std::vector<std::pair<Rect, Color>> fills{{surface.bounds(), palette.ground}};
        std::vector<DrawnGradient> gradients;
        auto check = [&](const Color& ink, Point at, const std::string& what) {
            auto ground = palette.ground;
            for (auto& gradient : gradients)
                ground = gradient.rect.contains(at) ? over(colorAt(gradient, at), ground) : ground;
            for (auto& [rect, color] : fills)
                ground = rect.contains(at) ? over(color, ground) : ground;
            EXPECT_GE(contrast(ink, ground), palette.leastContrast - 1e-9) << what;
            ++checked[what];
        };
        auto drawn = surface.render();
        for (auto& operation : drawn.operations()) {
            if (auto* text = std::get_if<DrawnText>(&operation)) {
                for (double part : {-0.5, 0.0, 0.5}) {
                    auto at = text->rect.centre().translated(0, part * text->style.size);
                    check(text->style.color, at, text->text);
                }
            } else if (auto* gradient = std::get_if<DrawnGradient>(&operation))
                gradients.push_back(*gradient);
            else if (auto* symbol = std::get_if<DrawnSymbol>(&operation))
                check(symbol->color, symbol->rect.centre(), "symbol");
            else if (auto* ring = std::get_if<DrawnStroke>(&operation); ring && ring->width > 1)
                check(ring->color, {ring->rect.x + 1, ring->rect.centre().y}, "ring");
            else if (auto* fill = std::get_if<DrawnFill>(&operation)) {
                if (fill->radius > 0 && fill->rect.height <= 6)
                    check(fill->color, fill->rect.centre(), "mark");
                fills.emplace_back(fill->rect, fill->color);
            }
        }
    }
    /// Of a gradient from the top to the bottom.
    static Color colorAt(const DrawnGradient& gradient, Point at)
    {
        double place = (at.y - gradient.rect.y) / gradient.rect.height;
        auto after = std::ranges::find_if(
            gradient.stops, [&](auto& stop) { return stop.position >= place; });
        if (after == gradient.stops.begin() || after == gradient.stops.end())
            return after == gradient.stops.end() ? gradient.stops.back().color : after->color;
        auto& [from, first] = after[-1];
        double share = (place - from) / (after->position - from);
        auto mixed = [share](double a, double b) { return a + (b - a) * share; };
        return {mixed(first.red, after->color.red), mixed(first.green, after->color.green),
            mixed(first.blue, after->color.blue), mixed(first.alpha, after->color.alpha)};
    }
    std::map<std::string, int> checked;
};

}

// Faults: a text or mark that fades into what it lies on in some look or beside somebody's accent
// colour; an accent or a wish for contrast that changes nothing; views that keep half of an old
// look; a wash so thin that nobody sees it.
TEST_F(PaletteTest, textAndMarksStandOutInEveryLook)
{
    EXPECT_NEAR(contrast(Color::grey(0), Color::grey(1)), 21, 1e-9);
    EXPECT_NEAR(contrast(Color{1, 0, 0}, Color::grey(1)), 3.998, 1e-3);
    desktop.minimise(notes);
    pin("player");
    desktop.launchServices().statuses = {{"mail", "3", 0.9}};
    desktop.launchServices().requests = {{draft, "mail"}};
    settle();
    panel().click(content().pinFrames().front().second.centre());
    auto everyLook = [&](auto surfaces) {
        std::set<std::string> marks;
        for (int look = 0; look < 24; ++look) {
            std::vector<std::optional<Color>> accents{std::nullopt, Color{1, 0.8, 0},
                Color{0.1, 0.1, 0.6}, Color{0.9, 0.3, 0.6}, Color::grey(1), Color::grey(0.4)};
            Appearance appearance{.isDark = look % 2 == 0,
                .increaseContrast = look % 4 < 2,
                .accent = accents[look / 4]};
            SCOPED_TRACE(look);
            auto theme = kAllBarThemes[std::size_t(look % 3)];
            runtime->userSettings().setTheme(theme);
            desktop.program().setAppearance(appearance);
            desktop.advance(seconds(0.3));
            auto palette = Palette::of(appearance, BarBackground::ground(theme, appearance));
            auto asking = over(palette.attention, over(palette.fill, palette.ground));
            EXPECT_GT(asking.red - asking.blue, 0.08);
            EXPECT_EQ(palette.leastContrast, appearance.increaseContrast ? 7 : 4.5);
            marks.insert(std::to_string(palette.accent.red) + std::to_string(palette.accent.blue));
            for (auto* surface : surfaces())
                expectContrast(*surface, palette);
        }
        EXPECT_GT(marks.size(), 12U);
    };
    panel().takeKeyboard();
    hoverUntilShown(draft);
    everyLook([&] { return std::vector{&panel(), popup()}; });
    popup()->movePointer({popup()->bounds().width - 20, 20});
    everyLook([&] { return std::vector{&panel(), popup()}; });
    panel().press(middleOf(inbox), PointerButton::secondary);
    desktop.surfaces().menu()->pressKey(KeyCode::down);
    everyLook([&] { return desktop.surfaces().menus(); });
    desktop.screenCapture().setAllowed(false);
    auto& platform = runtime->platform();
    LaunchPermissionCenter center{
        platform.accessibility, platform.screenCapture, platform.workspace};
    PermissionsGateModel model{platform.dispatch, center};
    model.refresh();
    PermissionsGatePanel gate{platform, model};
    gate.show();
    everyLook([&] { return std::vector{desktop.surfaces().window()}; });
    desktop.screenCapture().setAllowed(true);
    model.refresh();
    everyLook([&] { return std::vector{desktop.surfaces().window()}; });
    for (auto* what : {"Granted", "Required", "Continue", "Inbox", "Draft", "Notes", "3", "1",
             "mark", "ring", "symbol"})
        EXPECT_GT(checked[what], 0) << what;
}

}
