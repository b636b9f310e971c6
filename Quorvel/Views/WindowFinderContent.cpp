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

WindowFinderContent::WindowFinderContent(
    const Inputs& given, WindowFinder& windowFinder, ThumbnailService& thumbnailService)
    : SearchPanelContent(
        given, {.title = tr("Find a Window"), .placeholder = tr("Search windows...")})
    , m_windowFinder(windowFinder)
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

/// A system with text fields of its own is a Mac, whose Delete is what others call Backspace.
/// Elsewhere Control-Backspace erases a word of the query.
bool WindowFinderContent::useKey(const KeyEvent& event)
{
    bool isDelete = event.keyCode == KeyCode::forwardDelete
        || (event.keyCode == KeyCode::backspace && hasSystemField());
    bool isChord = event.has(KeyModifier::control) && !event.has(KeyModifier::option)
        && !event.has(KeyModifier::command) && !event.has(KeyModifier::shift);
    if (!isDelete || !isChord)
        return false;
    // Held down it would close one window after the other.
    if (auto window = event.isRepeat ? std::nullopt : m_rows->selected())
        closeWindow(*window);
    return true;
}

void WindowFinderContent::showMenu(WindowID window, const Rect& anchor)
{
    if (!onMenuRequested)
        return;
    auto model = m_windowFinder.viewModel().weakReference();
    auto close = [model, window] {
        if (auto* current = model.get())
            current->closeWindow(window);
    };
    onMenuRequested({{tr("Activate"), true,
                         [choose = onWindowChosen, window] {
                             if (choose)
                                 choose(window);
                         }},
                        {tr("Close"), true, close}},
        anchor);
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
