#include "Quorvel/Views/WindowFinderRows.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Core/ThumbnailService.h"
#include "Quorvel/Views/WindowRowView.h"

namespace quorvel {

WindowFinderRows::WindowFinderRows(ThumbnailService& thumbnailService, const Palette& palette)
    : m_thumbnailService(thumbnailService)
    , m_palette(palette)
{
}

WindowFinderRows::~WindowFinderRows() = default;

double WindowFinderRows::rowHeight(std::size_t) const
{
    return WindowRowView::kHeight;
}

std::unique_ptr<ListRowView> WindowFinderRows::makeRowView(int)
{
    auto view = std::make_unique<WindowRowView>(m_palette);
    view->onTapped = [this](WindowID window) { onTapped(window); };
    view->onCloseRequested = [this](WindowID window) { onCloseRequested(window); };
    view->onMenu = [this](WindowID window, const Rect& anchor) {
        auto found = std::ranges::find(m_windows, window, [](auto& each) { return each.chip.id; });
        if (found != m_windows.end())
            selectAndReveal(*m_list, static_cast<std::size_t>(found - m_windows.begin()));
        onMenu(window, anchor);
    };
    return view;
}

void WindowFinderRows::fillRowView(ListRowView& view, std::size_t row)
{
    auto& rowView = static_cast<WindowRowView&>(view);
    auto& window = m_windows[row];
    auto name = window.space ? m_names.find(*window.space) : m_names.end();
    rowView.setWindow(window, name == m_names.end() ? std::string{} : name->second,
        AccessiblePosition{row, m_windows.size()});
    rowView.setRightToLeft(m_isRightToLeft);
    rowView.setPicture(m_thumbnailService.cached(window.chip.id));
    askForPicture(window.chip.id);
}

void WindowFinderRows::setRightToLeft(bool isRightToLeft)
{
    if (std::exchange(m_isRightToLeft, isRightToLeft) == isRightToLeft)
        return;
    m_list->setRightToLeft(isRightToLeft);
    for (auto row : m_list->rowsWithViews())
        fillRowView(*m_list->rowView(row), row);
}

// MARK: Which rows

std::optional<WindowID> WindowFinderRows::selected() const
{
    auto row = m_list->selectedRow();
    return row && *row < m_windows.size() ? std::optional{m_windows[*row].chip.id} : std::nullopt;
}

void WindowFinderRows::setWindows(
    std::vector<FoundWindow> windows, std::map<SpaceID, std::string> names, Selection selection)
{
    if (selection == Selection::kept && windows == m_windows && names == m_names)
        return;
    auto before = selected();
    auto placeBefore = m_list->selectedRow().value_or(0);
    m_windows = std::move(windows);
    m_names = std::move(names);
    m_list->reload(selection == Selection::kept ? std::nullopt : std::optional{0.0});
    select(selection, before, placeBefore);
}

void WindowFinderRows::select(
    Selection selection, std::optional<WindowID> before, std::size_t placeBefore)
{
    if (m_windows.empty())
        return m_list->select(std::nullopt);
    auto last = m_windows.size() - 1;
    if (selection != Selection::kept)
        return m_list->select(selection == Selection::second ? std::min<std::size_t>(1, last) : 0);
    auto found
        = std::ranges::find_if(m_windows, [&](auto& window) { return before == window.chip.id; });
    selectAndReveal(*m_list,
        found == m_windows.end() ? std::min(placeBefore, last)
                                 : static_cast<std::size_t>(found - m_windows.begin()));
}

// MARK: Pictures

void WindowFinderRows::askForPicture(WindowID window)
{
    if (m_pictures.contains(window))
        return;
    m_pictures[window] = m_thumbnailService.thumbnail(
        window, [this, window](const auto&) { pictureDidArrive(window); });
}

void WindowFinderRows::pictureDidArrive(WindowID window)
{
    for (auto row : m_list->rowsWithViews()) {
        if (m_windows[row].chip.id == window)
            fillRowView(*m_list->rowView(row), row);
    }
}

}
