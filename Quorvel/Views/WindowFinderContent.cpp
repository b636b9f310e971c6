#include "Quorvel/Views/WindowFinderContent.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Core/SearchTerms.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Platform/WindowServer.h"
#include "Quorvel/Views/SpaceCells.h"

namespace quorvel {

namespace {

bool isChord(const KeyEvent& event, std::uint64_t modifier)
{
    constexpr auto all
        = KeyModifier::shift | KeyModifier::control | KeyModifier::option | KeyModifier::command;
    return (event.modifiers & all) == modifier;
}

/// The list on the screen, as large as its room.
class WindowListHolder final : public View {
public:
    WindowListHolder(ListRows& rows, const Palette& palette, Dispatch& dispatch)
        : m_list(&addChild(std::make_unique<ListView>(rows, palette, dispatch)))
    {
    }

    ListView& list() { return *m_list; }

private:
    void layout() override { m_list->setFrame(bounds()); }

    ListView* m_list;
};

}

WindowFinderContent::WindowFinderContent(const Inputs& given, WindowFinder& windowFinder,
    ThumbnailService& thumbnailService, SpaceID space)
    : SearchPanelContent(
          given, {.title = tr("Find a Window"), .placeholder = tr("Search windows...")})
    , m_windowFinder(windowFinder)
    , m_space(space)
    , m_windows(windowFinder.windows())
    , m_rows(std::make_unique<WindowFinderRows>(thumbnailService, palette()))
{
    auto& holder = addChild(
        std::make_unique<WindowListHolder>(*m_rows, palette(), inputs().platform.dispatch));
    m_rows->setList(holder.list());
    m_rows->onTapped = [this](WindowID window) {
        if (onWindowChosen)
            onWindowChosen(window);
    };
    m_rows->onCloseRequested = [this](WindowID window) { closeWindow(window); };
    m_rows->onMenu = [this](WindowID window, auto& anchor) { showMenu(window, anchor); };
    setList(holder, holder.list());
    keep(windowFinder.viewModel().chipsBySpace.subscribe([this](auto&) { windowsDidChange(); }));
    updateRows(selectionAtTop());
}

WindowFinderContent::~WindowFinderContent() = default;

// MARK: What it lists

/// Whoever opens the list wants to go to another window than the one in front.
WindowFinderContent::Selection WindowFinderContent::selectionAtTop() const
{
    bool isInFront = !m_windows.empty() && m_windows.front().chip.isFocused;
    return trimmed(m_query).empty() && isInFront ? Selection::second : Selection::first;
}

void WindowFinderContent::queryDidChange(const std::string& text)
{
    m_query = text;
    updateRows(selectionAtTop());
}

void WindowFinderContent::windowsDidChange()
{
    auto now = m_windowFinder.windows();
    std::vector<FoundWindow> ordered;
    ordered.reserve(now.size());
    std::map<WindowID, FoundWindow*> byID;
    for (auto& window : now)
        byID[window.chip.id] = &window;
    for (auto& window : m_windows) {
        if (auto found = byID.find(window.chip.id); found != byID.end()) {
            ordered.push_back(*found->second);
            byID.erase(found);
        }
    }
    std::ranges::copy_if(now, std::back_inserter(ordered),
        [&](auto& window) { return byID.contains(window.chip.id); });
    m_windows = std::move(ordered);
    updateRows(Selection::kept);
}

void WindowFinderContent::updateRows(Selection selection)
{
    m_rows->setWindows(m_windowFinder.search(m_windows, m_query), spaceNames(), selection);
    if (m_rows->rowCount() > 0)
        showList();
    else if (m_windows.empty())
        showMessage(tr("No open windows"));
    else
        showMessage(trFormat("No windows matching \"{}\"", m_query));
}

/// Where there is one space only, its name says nothing.
std::map<SpaceID, std::string> WindowFinderContent::spaceNames() const
{
    std::map<SpaceID, std::string> names;
    auto& model = m_windowFinder.viewModel();
    if (model.spaces.value().size() < 2)
        return names;
    for (auto& space : model.spaces.value()) {
        if (names.contains(space.spaceID))
            continue;
        for (auto& cell : spaceCells(model, inputs().platform.windowServer, space.spaceID))
            names[cell.id] = cell.name;
    }
    return names;
}

// MARK: What is done with it

void WindowFinderContent::openSelected()
{
    auto window = m_rows->selected();
    if (window && onWindowChosen)
        onWindowChosen(*window);
}

void WindowFinderContent::closeWindow(WindowID window)
{
    m_windowFinder.viewModel().closeWindow(window);
}

void WindowFinderContent::bringSelected()
{
    auto* found = m_rows->selected() ? window(*m_rows->selected()) : nullptr;
    if (!found)
        return;
    if (m_windowFinder.canBring(*found, m_space) && onWindowBrought)
        onWindowBrought(found->chip.id, *found->space);
    else if ((!found->space || found->space == m_space) && onWindowChosen)
        onWindowChosen(found->chip.id);
}

const FoundWindow* WindowFinderContent::window(WindowID id) const
{
    auto found = std::ranges::find(m_windows, id, [](auto& each) { return each.chip.id; });
    return found == m_windows.end() ? nullptr : &*found;
}

bool WindowFinderContent::useKey(const KeyEvent& event)
{
    return useCloseKey(event) || useBringKey(event);
}

/// A system with text fields of its own is a Mac, whose Delete is what others call Backspace.
/// Elsewhere Control-Backspace erases a word of the query.
bool WindowFinderContent::useCloseKey(const KeyEvent& event)
{
    bool isDelete = event.keyCode == KeyCode::forwardDelete
        || (event.keyCode == KeyCode::backspace && hasSystemField());
    if (!isDelete || !isChord(event, KeyModifier::control))
        return false;
    // Held down it would close one window after the other.
    if (auto selected = event.isRepeat ? std::nullopt : m_rows->selected())
        closeWindow(*selected);
    return true;
}

/// Control-Return, which others have for it, asks for a menu on the Mac.
bool WindowFinderContent::useBringKey(const KeyEvent& event)
{
    bool isReturn = event.keyCode == KeyCode::enter || event.keyCode == KeyCode::keypadEnter;
    if (!isReturn || !isChord(event, KeyModifier::shift))
        return false;
    if (!event.isRepeat)
        bringSelected();
    return true;
}

void WindowFinderContent::showMenu(WindowID id, const Rect& anchor)
{
    auto* found = window(id);
    if (!onMenuRequested || !found)
        return;
    Menu menu{{tr("Activate"), true, [choose = onWindowChosen, id] {
                   if (choose)
                       choose(id);
               }}};
    if (m_windowFinder.canBring(*found, m_space) && onWindowBrought) {
        menu.push_back({tr("Move Here"), true,
            [bring = onWindowBrought, id, from = *found->space] { bring(id, from); }});
        menu.back().keys = MenuKeys{KeyCode::enter, KeyModifier::shift};
    }
    menu.push_back({tr("Close"), true, [model = m_windowFinder.viewModel().weakReference(), id] {
                        if (auto* current = model.get())
                            current->closeWindow(id);
                    }});
    menu.back().keys = MenuKeys{
        hasSystemField() ? KeyCode::backspace : KeyCode::forwardDelete, KeyModifier::control};
    onMenuRequested(std::move(menu), anchor);
}

// MARK: What is where

std::vector<WindowFinderContent::RowPlace> WindowFinderContent::rowPlaces() const
{
    std::vector<RowPlace> places;
    for (auto& [row, frame] : shownRows())
        places.push_back({m_rows->windows()[row].chip.id, list().selectedRow() == row, frame});
    return places;
}

}
