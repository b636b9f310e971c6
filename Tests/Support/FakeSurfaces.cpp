#include "Tests/Support/FakeSurfaces.h"

#include <algorithm>

#include "Tests/Support/Contract.h"
#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

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
    losePointer();
    std::erase(m_surfaces.m_panels, this);
    if (m_surfaces.m_menu && m_surfaces.m_menu->panel == this)
        m_surfaces.closeMenu();
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
    losePointer();
}

void FakePanel::makeKeyAndOrderFront()
{
    orderFront();
    if (m_canBecomeKey && m_surfaces.followsKeyPanels())
        m_desktop.activateSpace(m_options.space);
}

bool FakePanel::isVisible() const
{
    return m_isOrderedIn
        && (m_options.kind == PanelKind::popup || m_desktop.model().isCurrent(m_options.space));
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

void FakePanel::send(PointerAction action, Point at, PointerButton button)
{
    m_client.pointerEvent({action, at, button, m_held});
}

void FakePanel::movePointer(Point at)
{
    m_desktop.model().pointer
        = {m_frame.x + at.x, m_desktop.model().flipHeight() - m_frame.maxY() + at.y};
    send(std::exchange(m_hasPointer, true) ? PointerAction::moved : PointerAction::entered, at);
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
    (button == PointerButton::primary            ? m_held.primary
            : button == PointerButton::secondary ? m_held.secondary
                                                 : m_held.middle)
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

bool FakePanel::takeKeyboard()
{
    if (!std::exchange(m_hasKeyboard, true))
        m_client.keyboardDidChange(true);
    return true;
}

void FakePanel::releaseKeyboard()
{
    if (std::exchange(m_hasKeyboard, false))
        m_client.keyboardDidChange(false);
}

bool FakePanel::pressKey(const KeyEvent& event)
{
    return m_hasKeyboard && m_client.keyPressed(event);
}

bool FakePanel::dragFiles(DropAction action, Point at, std::vector<std::string> paths)
{
    return m_client.dropEvent({action, at, std::move(paths)});
}

std::unique_ptr<PanelSurface> FakeSurfaces::createPanel(
    const PanelOptions& options, SurfaceClient& client)
{
    if (!m_desktop.dispatch().isOnMain())
        contractBroken("a panel was made away from the main thread");
    ++m_panelsMade;
    return std::make_unique<FakePanel>(m_desktop, *this, options, client);
}

void FakeSurfaces::popUpMenu(
    PanelSurface& panel, Menu menu, const Rect& anchor, std::function<void()> onClosed)
{
    closeMenu();
    m_menu = OpenMenu{std::move(menu), anchor, &panel, std::move(onClosed)};
}

void FakeSurfaces::closeMenu()
{
    if (auto menu = std::exchange(m_menu, std::nullopt); menu && menu->onClosed)
        m_desktop.post(std::move(menu->onClosed));
}

namespace {

void addEntries(const Menu& menu, std::vector<MenuEntry>& entries)
{
    for (auto& item : menu) {
        if (!item.title.empty())
            entries.push_back({item.title, item.isEnabled, {}});
        addEntries(item.submenu, entries);
    }
}

const MenuItem* findItem(const Menu& menu, std::string_view title)
{
    for (auto& item : menu) {
        if (item.title == title)
            return &item;
        if (auto* found = findItem(item.submenu, title))
            return found;
    }
    return nullptr;
}

}

std::vector<MenuEntry> FakeSurfaces::openMenuEntries() const
{
    std::vector<MenuEntry> entries;
    if (m_menu)
        addEntries(m_menu->menu, entries);
    return entries;
}

FakePanel* FakeSurfaces::popup() const
{
    auto found = std::ranges::find_if(m_panels, [](const FakePanel* panel) {
        return panel->options().kind == PanelKind::popup && panel->isOrderedIn();
    });
    return found == m_panels.end() ? nullptr : *found;
}

std::vector<FakePanel*> FakeSurfaces::visiblePanels() const
{
    std::vector<FakePanel*> visible;
    std::ranges::copy_if(m_panels, std::back_inserter(visible), &FakePanel::isVisible);
    return visible;
}

Subscription FakeSurfaces::monitorPointer(PointerScope scope, std::function<void()> handler)
{
    return m_pointerMoved[scope].subscribe(std::move(handler));
}

template <typename Condition> FakePanel* FakeSurfaces::find(Condition condition) const
{
    auto found = std::ranges::find_if(
        m_panels, [&](const FakePanel* panel) { return condition(panel->options()); });
    return found == m_panels.end() ? nullptr : *found;
}

FakePanel* FakeSurfaces::panel(SpaceID space) const
{
    return find([&](const PanelOptions& options) {
        return options.kind == PanelKind::bar && options.space == space;
    });
}

FakePanel* FakeSurfaces::panel(SpaceID space, DisplayNumber display) const
{
    return find([&](const PanelOptions& options) {
        return options.kind == PanelKind::bar && options.space == space
            && options.display == display;
    });
}

FakePanel* FakeSurfaces::fullscreenProxy(SpaceID space) const
{
    return find([&](const PanelOptions& options) {
        return options.kind == PanelKind::fullscreenProxy && options.space == space;
    });
}

std::vector<std::string> FakeSurfaces::menuTitles() const
{
    std::vector<std::string> titles;
    for (auto& item : m_menu ? m_menu->menu : Menu{})
        titles.push_back(item.title);
    return titles;
}

bool FakeSurfaces::chooseMenuItem(std::string_view title)
{
    if (!m_menu)
        return false;
    auto* found = findItem(m_menu->menu, title);
    if (!found || !found->isEnabled || !found->action)
        return false;
    auto action = found->action;
    closeMenu();
    m_desktop.post(std::move(action));
    return true;
}

}
