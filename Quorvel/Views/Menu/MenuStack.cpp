#include "Quorvel/Views/Menu/MenuStack.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Quorvel/Platform/Application.h"
#include "Quorvel/Views/Menu/MenuPlacement.h"

namespace quorvel {

namespace {

/// A hand that holds the mouse still moves it by less, in points.
constexpr double kStillHand = 3;
/// So far a click alone never gets, however quick the hand is.
constexpr double kDrag = 24;
/// A button that is let go sooner has clicked, and a moved hand means nothing.
constexpr auto kClick = seconds(0.3);
constexpr auto kRestBeforeSubmenu = seconds(0.15);
/// A pointer on its way to a submenu may take this long from one motion to the next.
constexpr auto kPatienceOnTheWay = seconds(0.3);
constexpr auto kRollInterval = seconds(1.0 / 60);
constexpr double kRollStep = 5;
constexpr double kWheelStep = 2 * MenuMetrics::rowHeight;

double distance(Point from, Point to)
{
    return std::hypot(to.x - from.x, to.y - from.y);
}

Screen screenAt(const Displays& displays, const Rect& anchor)
{
    auto screens = displays.screens();
    double height = screens.front().frame.height;
    auto found = std::ranges::find_if(screens,
        [&](auto& screen) { return screen.frame.flipped(height).contains(anchor.centre()); });
    return found == screens.end() ? screens.front() : *found;
}

}

MenuStack::MenuStack(const Platform& platform, Menu menu, const Rect& anchor, Ended ended)
    : m_platform(platform)
    , m_menu(std::move(menu))
    , m_screen(screenAt(platform.displays, anchor))
    , m_bounds(m_screen.frame.flipped(platform.displays.screens().front().frame.height))
    , m_ended(std::move(ended))
    , m_typing(platform.dispatch)
{
    m_levels.push_back({makePanel(
        m_menu, [&](Size size) { return placeMenu(size, anchor, m_bounds, isRightToLeft()); })});
    waitForDeliberateMove(platform.displays.pointerLocation());
    m_screens = platform.displays.parametersDidChange.subscribe([this] {
        if (!isScreenThere())
            end(MenuEnding::dismissed);
    });
    if (auto current = currentChoice(m_menu)) {
        panel(0).centre(*current);
        if (m_menu[*current].canBeChosen())
            panel(0).highlight(current);
    }
}

MenuStack::~MenuStack() = default;

std::unique_ptr<MenuPanel> MenuStack::makePanel(const Menu& menu, const MenuPanel::Place& place)
{
    MenuListener& listener = *this;
    return std::make_unique<MenuPanel>(m_platform, m_screen, menu, place, listener);
}

/// A menu that does not have the pointer could not be closed by a press elsewhere, so it goes.
void MenuStack::start()
{
    if (!panel(0).grabInput())
        end(MenuEnding::dismissed);
}

bool MenuStack::isRightToLeft() const
{
    return m_platform.application.appearance().value().isRightToLeft;
}

/// What other panels keep for themselves may change under a menu.
bool MenuStack::isScreenThere() const
{
    auto screens = m_platform.displays.screens();
    return std::ranges::any_of(screens, [this](auto& screen) {
        return screen.frame == m_screen.frame && screen.scale == m_screen.scale
            && screen.number == m_screen.number;
    });
}

std::vector<MenuEntry> MenuStack::entries() const
{
    std::vector<MenuEntry> all;
    for (auto& level : m_levels) {
        auto some = level.panel->entries();
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

// MARK: The pointer

void MenuStack::pointerEvent(const PointerEvent& event, Point at)
{
    if (m_press.hasMissedRelease(event))
        m_press.cancel();
    m_press.takeOver(event); // the one that opened the menu
    switch (event.action) {
    case PointerAction::entered:
    case PointerAction::moved:
        return motion(at);
    case PointerAction::pressed:
        if (m_press.begin(event.button))
            press(at);
        break;
    case PointerAction::released:
        if (m_press.end(event.button))
            release(at);
        break;
    case PointerAction::exited:
        break;
    }
}

/// A menu that opens under the pointer must not be chosen from by the release that comes next.
void MenuStack::waitForDeliberateMove(Point pointer)
{
    m_origin = m_pointer = pointer;
    m_waitingSince = m_platform.dispatch.now();
    m_wasPressed = false;
}

bool MenuStack::isReleaseDeliberate() const
{
    bool isClick = m_platform.dispatch.now() - m_waitingSince < kClick;
    return m_wasPressed || distance(m_origin, m_pointer) > (isClick ? kDrag : kStillHand);
}

void MenuStack::motion(Point at)
{
    m_pointer = at;
    auto depth = depthAt(at);
    m_roll.cancel();
    if (!depth)
        return pointOutside();
    m_isInside = m_wasInside = true;
    if (int side = panel(*depth).stripAt(at))
        return rollBy(*depth, side);
    if (headsForSubmenu(*depth)) {
        m_rest = m_platform.dispatch.main().after(
            kPatienceOnTheWay, [this, depth] { pointAt(*depth, m_pointer); });
        return;
    }
    pointAt(*depth, at);
}

/// Judged over some points: from pixel to pixel, a slanting way is a row of straight ones.
bool MenuStack::headsForSubmenu(Depth depth)
{
    if (depth == deepest())
        return false;
    if (distance(m_trail, m_pointer) > kStillHand) {
        auto from = std::exchange(m_trail, m_pointer);
        m_isOnTheWay = headsFor(from, m_pointer, panel(depth + 1).frame());
    }
    return m_isOnTheWay;
}

std::optional<MenuStack::Depth> MenuStack::depthAt(Point at) const
{
    for (auto depth = m_levels.size(); depth-- > 0;) {
        if (m_levels[depth].panel->frame().contains(at))
            return depth;
    }
    return std::nullopt;
}

/// What the keyboard has reached stays while the pointer moves elsewhere.
void MenuStack::pointOutside()
{
    m_rest.cancel();
    if (std::exchange(m_isInside, false))
        panel(deepest()).highlight(std::nullopt);
}

void MenuStack::pointAt(Depth depth, Point at)
{
    auto row = panel(depth).rowAt(at);
    bool isOpen = depth < deepest() && m_levels[depth + 1].opener == row;
    if (isOpen) {
        closeBelow(depth + 1);
        panel(depth + 1).highlight(std::nullopt);
        panel(depth).highlight(row);
        return;
    }
    bool waits = m_rest.isPending() && depth == deepest() && row == view(depth).highlighted();
    if (waits)
        return;
    closeBelow(depth);
    panel(depth).highlight(row);
    if (row && !view(depth).item(*row).submenu.empty())
        m_rest = m_platform.dispatch.main().after(
            kRestBeforeSubmenu, [this, depth, row] { openSubmenu(depth, row); });
}

void MenuStack::rollBy(Depth depth, int side)
{
    closeBelow(depth);
    panel(depth).highlight(std::nullopt);
    m_roll = m_platform.dispatch.main().every(
        kRollInterval, [this, depth, side] { roll(depth, side); });
}

/// At the end nothing is left to wake up for.
void MenuStack::roll(Depth depth, int side)
{
    if (panel(depth).scroll(side * kRollStep) && panel(depth).stripAt(m_pointer) == side)
        return;
    m_roll.cancel();
    pointAt(depth, m_pointer);
}

void MenuStack::scrollEvent(const ScrollEvent& event, Point at)
{
    auto depth = depthAt(at);
    if (!depth || event.deltaY == 0)
        return;
    closeBelow(*depth);
    m_roll.cancel();
    panel(*depth).scroll(-event.deltaY * (event.unit == ScrollUnit::notches ? kWheelStep : 1));
    pointAt(*depth, at);
}

void MenuStack::press(Point at)
{
    auto depth = depthAt(at);
    if (!depth)
        return end(MenuEnding::dismissed);
    m_wasPressed = m_isInside = m_wasInside = true;
    m_pointer = at;
    pointAt(*depth, at);
}

/// A drag that ends outside, after it has been in the menu, takes the menu back.
void MenuStack::release(Point at)
{
    m_pointer = at;
    auto depth = depthAt(at);
    if (!depth && std::exchange(m_wasInside, false))
        return end(MenuEnding::dismissed);
    if (depth && isReleaseDeliberate())
        choose(*depth, panel(*depth).rowAt(at));
}

// MARK: The keyboard

bool MenuStack::keyPressed(const KeyEvent& event)
{
    auto row = view(deepest()).highlighted();
    if (event.asksForMenu()) {
        end(MenuEnding::escaped); // the key that opened it
        return true;
    }
    switch (event.keyCode) {
    case KeyCode::escape:
        if (!goBack())
            end(MenuEnding::escaped);
        return true;
    case KeyCode::up:
        return step(row, -1);
    case KeyCode::down:
        return step(row, 1);
    case KeyCode::tab:
        return step(row, event.has(KeyModifier::shift) ? -1 : 1);
    case KeyCode::home:
        return step(std::nullopt, 1);
    case KeyCode::end:
        return step(std::nullopt, -1);
    case KeyCode::pageUp:
        return moveByPage(-1);
    case KeyCode::pageDown:
        return moveByPage(1);
    case KeyCode::right:
        return isRightToLeft() ? goBack() : goForwards();
    case KeyCode::left:
        return isRightToLeft() ? goForwards() : goBack();
    case KeyCode::space:
        if (m_typing.isGoingOn() && type(event))
            return true;
        [[fallthrough]];
    case KeyCode::enter:
    case KeyCode::keypadEnter:
        if (row && !view(deepest()).item(*row).submenu.empty())
            return goForwards();
        choose(deepest(), row);
        return true;
    default:
        return type(event);
    }
}

bool MenuStack::step(std::optional<Row> from, int step)
{
    m_typing.forget();
    return moveTo(view(deepest()).rowBeside(from, step));
}

bool MenuStack::moveTo(std::optional<Row> row)
{
    m_rest.cancel();
    m_roll.cancel();
    auto& panel_ = panel(deepest());
    panel_.highlight(row);
    if (row)
        panel_.reveal(*row);
    return true;
}

/// By as many rows as are in sight, and never around the end.
bool MenuStack::moveByPage(int side)
{
    auto& view_ = view(deepest());
    auto page = std::max(1, static_cast<int>(view_.bounds().height / MenuMetrics::rowHeight) - 1);
    auto last = static_cast<int>(view_.menu().size()) - 1;
    int from = view_.highlighted() ? static_cast<int>(*view_.highlighted()) : (side > 0 ? 0 : last);
    int to = std::clamp(from + side * page, 0, last);
    if (to == 0 || to == last)
        return step(std::nullopt, to == 0 ? 1 : -1);
    return step(static_cast<Row>(to + side), -side);
}

bool MenuStack::goForwards()
{
    auto row = view(deepest()).highlighted();
    if (!openSubmenu(deepest(), row))
        return false;
    auto current = currentChoice(view(deepest()).menu());
    if (current && view(deepest()).item(*current).canBeChosen())
        return moveTo(current);
    return step(std::nullopt, 1);
}

bool MenuStack::goBack()
{
    if (deepest() == 0)
        return false;
    closeBelow(deepest() - 1);
    return true;
}

bool MenuStack::type(const KeyEvent& event)
{
    constexpr auto shortcuts = KeyModifier::control | KeyModifier::option | KeyModifier::command;
    auto& view_ = view(deepest());
    auto row = event.has(shortcuts)
        ? std::nullopt
        : m_typing.type(event.characters, view_.menu(), view_.highlighted());
    return row && moveTo(row);
}

// MARK: What it comes to

/// True if it is open afterwards.
bool MenuStack::openSubmenu(Depth depth, std::optional<Row> row)
{
    if (!row || view(depth).item(*row).submenu.empty())
        return false;
    if (depth < deepest() && m_levels[depth + 1].opener == *row)
        return true;
    closeBelow(depth);
    m_typing.forget();
    auto opener = panel(depth).rowFrame(*row);
    auto& submenu = view(depth).item(*row).submenu;
    auto place = [&](Size size) {
        return placeSubmenu(size, opener, MenuMetrics::padding, m_bounds, isRightToLeft());
    };
    m_levels.push_back({makePanel(submenu, place), *row});
    if (auto current = currentChoice(submenu))
        panel(deepest()).centre(*current);
    m_trail = m_pointer;
    m_isOnTheWay = false;
    if (panel(deepest()).frame().contains(m_pointer))
        waitForDeliberateMove(m_pointer);
    return true;
}

void MenuStack::closeBelow(Depth depth)
{
    m_rest.cancel();
    while (deepest() > depth)
        m_levels.pop_back();
}

void MenuStack::rowChosen(MenuPanel& chosen, Row row)
{
    auto found
        = std::ranges::find(m_levels, &chosen, [](auto& level) { return level.panel.get(); });
    if (found != m_levels.end())
        choose(static_cast<Depth>(found - m_levels.begin()), row);
}

void MenuStack::choose(Depth depth, std::optional<Row> row)
{
    if (row && !openSubmenu(depth, row))
        end(MenuEnding::chosen, view(depth).item(*row).action);
}

void MenuStack::end(MenuEnding ending, std::function<void()> action)
{
    m_screens = {};
    for (auto* item : {&m_rest, &m_roll})
        item->cancel();
    if (auto ended = std::exchange(m_ended, nullptr)) {
        for (auto depth = m_levels.size(); depth-- > 0;)
            m_levels[depth].panel->orderOut();
        ended(ending, std::move(action));
    }
}

}
