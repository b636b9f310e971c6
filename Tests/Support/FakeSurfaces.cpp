#include "Tests/Support/FakeSurfaces.h"

#include <algorithm>

#include "Tests/Support/Contract.h"
#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

namespace {

bool hasKeysWhenInFront(PanelKind kind)
{
    return kind == PanelKind::launcher || kind == PanelKind::window;
}

bool hasNoSpace(PanelKind kind)
{
    return kind == PanelKind::popup || kind == PanelKind::menu || kind == PanelKind::edge
        || hasKeysWhenInFront(kind);
}

/// The next character of a text in UTF-8.
std::string takeCharacter(std::string_view& utf8)
{
    std::size_t length = 1;
    while (length < utf8.size() && (static_cast<unsigned char>(utf8[length]) & 0xC0) == 0x80)
        ++length;
    std::string character{utf8.substr(0, length)};
    utf8.remove_prefix(length);
    return character;
}

}

FakePanel::FakePanel(
    FakeDesktop& desktop, FakeSurfaces& surfaces, PanelOptions options, SurfaceClient& client)
    : m_desktop(desktop)
    , m_surfaces(surfaces)
    , m_options(std::move(options))
    , m_client(client)
{
    m_surfaces.m_panels.push_back(this);
}

FakePanel::~FakePanel()
{
    orderOut();
    std::erase(m_surfaces.m_keyHolders, this);
    std::erase(m_surfaces.m_panels, this);
}

void FakePanel::setFrame(const Rect& frame)
{
    m_frames.push_back(frame);
    bool isResized = m_frame.size() != frame.size();
    m_frame = frame;
    if (!isResized)
        return;
    m_client.surfaceDidResize(frame.size());
    m_damage.clear();
    invalidate(bounds());
}

void FakePanel::orderFront()
{
    if (!std::exchange(m_isOrderedIn, true))
        invalidate(bounds());
}

void FakePanel::orderOut()
{
    m_isOrderedIn = false;
    if (m_options.kind == PanelKind::window)
        releaseKeyboard();
    if (std::erase(m_surfaces.m_grabs, this) > 0)
        std::erase(m_surfaces.m_keyHolders, this);
    losePointer();
}

void FakePanel::setSlide(double share)
{
    m_slide = share;
    if (share < 1)
        return;
    releaseKeyboard();
    losePointer();
}

void FakePanel::makeKeyAndOrderFront()
{
    orderFront();
    if (hasKeysWhenInFront(m_options.kind))
        takeKeyboard();
    else if (m_canBecomeKey && m_surfaces.followsKeyPanels())
        m_desktop.activateSpace(m_options.space);
}

bool FakePanel::isVisible() const
{
    return m_isOrderedIn
        && (hasNoSpace(m_options.kind) || m_desktop.model().isCurrent(m_options.space));
}

double FakePanel::scale() const
{
    auto* display = m_desktop.model().display(m_options.display);
    return display ? display->scale : 1;
}

// Parts that touch are painted in one go, parts that lie apart are not.
void FakePanel::invalidate(const Rect& rect)
{
    auto part = rect.intersected(bounds());
    if (part.isEmpty())
        return;
    for (auto at = m_damage.begin(); at != m_damage.end();) {
        if (at->intersects(part)) {
            part = part.united(*at);
            m_damage.erase(at);
            at = m_damage.begin();
        } else {
            ++at;
        }
    }
    m_damage.push_back(part);
    if (!m_nextFrame.isPending())
        m_nextFrame
            = m_desktop.dispatch().world().after(Duration::zero(), [this] { paintDamage(); });
}

void FakePanel::paintDamage()
{
    if (!m_isOrderedIn)
        return;
    for (auto& damage : std::exchange(m_damage, {})) {
        RecordingCanvas canvas{damage, scale()};
        m_client.paint(canvas, damage);
        if (!canvas.isBalanced())
            contractBroken("paint left the canvas with an open save or opacity group");
        m_paints.push_back({damage, std::move(canvas)});
    }
}

bool FakePanel::setBlursBehind(const std::optional<VisualEffect>& effect)
{
    m_effect = effect;
    return true;
}

RecordingCanvas FakePanel::render() const
{
    RecordingCanvas canvas{bounds(), scale()};
    m_client.paint(canvas, bounds());
    return canvas;
}

std::pair<FakePanel&, Point> FakePanel::listener(Point at)
{
    auto& panel = m_surfaces.m_grabs.empty() ? *this : *m_surfaces.m_grabs.back();
    return {
        panel, at.translated(m_frame.x - panel.m_frame.x, panel.m_frame.maxY() - m_frame.maxY())};
}

void FakePanel::send(PointerAction action, Point at, PointerButton button)
{
    auto [panel, place] = listener(at);
    panel.m_client.pointerEvent({action, place, button, m_surfaces.m_held, m_modifiers});
}

void FakePanel::movePointer(Point at)
{
    m_desktop.model().pointer
        = {m_frame.x + at.x, m_desktop.model().flipHeight() - m_frame.maxY() + at.y};
    bool isFirst = m_surfaces.m_grabs.empty() && !std::exchange(m_hasPointer, true);
    send(isFirst ? PointerAction::entered : PointerAction::moved, at);
    m_surfaces.pointerDidMove(PointerScope::ownWindows);
}

void FakePanel::leave()
{
    if (std::exchange(m_hasPointer, false))
        send(PointerAction::exited, {-1, -1});
}

void FakePanel::press(Point at, PointerButton button)
{
    movePointer(at);
    if (m_options.kind == PanelKind::window)
        takeKeyboard();
    if (m_surfaces.m_grabs.empty())
        m_surfaces.m_pressed[PointerScope::ownWindows].emit(m_desktop.model().pointer, button);
    send(PointerAction::pressed, at, button);
    setHeld(button, true);
}

void FakePanel::release(Point at, PointerButton button)
{
    send(PointerAction::released, at, button);
    setHeld(button, false);
}

void FakePanel::setHeld(PointerButton button, bool isHeld)
{
    auto& held = m_surfaces.m_held;
    (button == PointerButton::primary            ? held.primary
            : button == PointerButton::secondary ? held.secondary
                                                 : held.middle)
        = isHeld;
}

void FakePanel::losePointer()
{
    m_hasPointer = false;
    m_client.pointerLost();
}

void FakePanel::click(Point at, PointerButton button)
{
    press(at, button);
    release(at, button);
}

void FakePanel::scroll(Point at, double deltaY, bool isDirectionInverted)
{
    scroll({.location = at, .deltaY = deltaY, .isDirectionInverted = isDirectionInverted});
}

void FakePanel::scroll(ScrollEvent event)
{
    auto [panel, place] = listener(event.location);
    event.location = place;
    panel.m_client.scrollEvent(event);
}

bool FakePanel::takeKeyboard()
{
    if (std::exchange(m_hasKeyboard, true))
        return true;
    m_surfaces.m_keyHolders.push_back(this);
    m_client.keyboardDidChange(true);
    return true;
}

void FakePanel::releaseKeyboard()
{
    if (!std::exchange(m_hasKeyboard, false))
        return;
    std::erase(m_surfaces.m_keyHolders, this);
    m_client.keyboardDidChange(false);
}

bool FakePanel::grabInput()
{
    m_surfaces.m_keyHolders.push_back(this);
    for (auto* panel : m_surfaces.m_panels) {
        if (panel != this)
            panel->losePointer();
    }
    m_surfaces.m_grabs.push_back(this);
    return true;
}

bool FakePanel::pressKey(const KeyEvent& event)
{
    auto& holders = m_surfaces.m_keyHolders;
    return !holders.empty() && holders.back() == this && m_client.keyPressed(event);
}

bool FakePanel::type(std::string_view utf8)
{
    bool isUsed = true;
    while (!utf8.empty()) {
        auto character = takeCharacter(utf8);
        isUsed &= pressKey({.characters = character, .charactersIgnoringModifiers = character});
    }
    return isUsed;
}

bool FakePanel::dragFiles(DropAction action, Point at, std::vector<std::string> paths)
{
    return m_client.dropEvent({action, at, std::move(paths)});
}

std::vector<AccessibleElement*> FakePanel::elements() const
{
    std::vector<AccessibleElement*> found{accessibleRoot()};
    for (std::size_t next = 0; next < found.size(); ++next) {
        auto below = found[next]->accessibleChildren();
        found.insert(
            found.begin() + static_cast<std::ptrdiff_t>(next) + 1, below.begin(), below.end());
    }
    return found;
}

FakeSurfaces::FakeSurfaces(FakeDesktop& desktop)
    : m_desktop(desktop)
    , m_clipboard(desktop.dispatch())
{
}

std::unique_ptr<PanelSurface> FakeSurfaces::createPanel(
    const PanelOptions& options, SurfaceClient& client)
{
    if (!m_desktop.dispatch().isOnMain())
        contractBroken("a panel was made away from the main thread");
    ++m_panelsMade;
    return std::make_unique<FakePanel>(m_desktop, *this, options, client);
}

Subscription FakeSurfaces::monitorPointer(PointerScope scope, std::function<void()> handler)
{
    return m_pointerMoved[scope].subscribe(std::move(handler));
}

Subscription FakeSurfaces::monitorPresses(PointerScope scope, PressHandler handler)
{
    return m_pressed[scope].subscribe(std::move(handler));
}

void FakeSurfaces::pressElsewhere(Point at, PointerButton button)
{
    m_desktop.model().pointer = at;
    m_pressed[PointerScope::otherPrograms].emit(at, button);
    auto hasKeyboard = [](auto* panel) { return panel->hasKeyboard(); };
    for (auto it = std::ranges::find_if(m_keyHolders, hasKeyboard); it != m_keyHolders.end();
        it = std::ranges::find_if(m_keyHolders, hasKeyboard))
        (*it)->releaseKeyboard();
}

std::unique_ptr<NativeTextField> FakeSurfaces::createTextField(
    PanelSurface&, NativeTextFieldClient& client)
{
    if (!m_hasNativeTextFields)
        return nullptr;
    return std::make_unique<FakeTextField>(client, m_textField);
}

template <typename Condition>
std::vector<FakePanel*> FakeSurfaces::those(PanelKind kind, Condition condition) const
{
    std::vector<FakePanel*> found;
    std::ranges::copy_if(m_panels, std::back_inserter(found),
        [&](const FakePanel* panel) { return panel->options().kind == kind && condition(*panel); });
    return found;
}

std::vector<FakePanel*> FakeSurfaces::panels(SpaceID space, PanelKind kind) const
{
    return those(kind, [&](const FakePanel& panel) { return panel.options().space == space; });
}

FakePanel* FakeSurfaces::panel(SpaceID space, std::optional<DisplayNumber> display) const
{
    auto bars = panels(space, PanelKind::bar);
    std::erase_if(bars, [&](auto* bar) { return display && bar->options().display != *display; });
    return firstOf(bars);
}

std::vector<FakePanel*> FakeSurfaces::open(PanelKind kind) const
{
    return those(kind, [](const FakePanel& panel) { return panel.isOrderedIn(); });
}

namespace {

std::vector<AccessibleElement*> entriesOf(const FakePanel& menu)
{
    return menu.accessibleRoot()->accessibleChildren().front()->accessibleChildren();
}

}

std::vector<std::string> FakeSurfaces::menuTitles() const
{
    std::vector<std::string> titles;
    auto entries = menu() ? entriesOf(*menu()) : std::vector<AccessibleElement*>{};
    std::ranges::transform(entries, std::back_inserter(titles),
        [](auto* entry) { return entry->accessibleState().name; });
    return titles;
}

std::vector<std::string> FakeSurfaces::checkedMenuTitles() const
{
    std::vector<std::string> titles;
    for (auto* open : menus()) {
        for (auto* entry : entriesOf(*open)) {
            if (entry->accessibleState().isChecked)
                titles.push_back(entry->accessibleState().name);
        }
    }
    return titles;
}

void FakeSurfaces::closeMenu()
{
    while (auto* open = menu())
        open->pressKey(KeyCode::escape);
}

bool FakeSurfaces::chooseMenuItem(std::string_view title)
{
    return menu() && choose(*menu(), title);
}

bool FakeSurfaces::choose(FakePanel& panel, std::string_view title)
{
    auto entries = entriesOf(panel);
    for (auto* entry : entries) {
        if (entry->accessibleState().name == title)
            return entry->performAccessibleAction(0);
    }
    return std::ranges::any_of(entries, [&](auto* entry) {
        return entry->accessibleState().opensMenu && entry->performAccessibleAction(0)
            && choose(*menus().back(), title);
    });
}

}
