#include "Quorvel/Core/WindowFinder.h"

#include <algorithm>

#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/WindowServer.h"

namespace quorvel {

namespace {

enum class WordMatch { none, inside, beginning };

std::vector<std::string> wordsOf(std::string_view query, const Text& text)
{
    std::vector<std::string> words;
    std::string rest = normalised(query, text);
    for (std::size_t start = 0; start < rest.size();) {
        auto end = std::min(rest.find(' ', start), rest.size());
        if (end > start)
            words.push_back(rest.substr(start, end - start));
        start = end + 1;
    }
    return words;
}

}

WindowFinder::WindowFinder(BarViewModel& viewModel, const Platform& platform)
    : m_viewModel(viewModel)
    , m_windowServer(platform.windowServer)
    , m_text(platform.text)
    , m_focusChange(
          viewModel.focusedWindowID.subscribe([this](auto& focused) { noteFocus(focused); }))
{
    noteFocus(viewModel.focusedWindowID.value());
}

// MARK: The order

void WindowFinder::noteFocus(const std::optional<WindowID>& focused)
{
    if (!focused)
        return;
    std::erase(m_lastInFront, *focused);
    m_lastInFront.insert(m_lastInFront.begin(), *focused);
    // Windows that have gone since are few, and left out when the list is made.
    std::size_t chips = 0;
    for (auto& [space, ofSpace] : m_viewModel.chipsBySpace.value())
        chips += ofSpace.size();
    if (m_lastInFront.size() > 2 * chips + 1)
        m_lastInFront.resize(2 * chips + 1);
}

/// A window may come up twice; the first place counts.
std::vector<WindowID> WindowFinder::order() const
{
    auto order = m_lastInFront;
    m_windowServer.enumerateWindows(
        kWindowListExcludeDesktopElements, [&](const CGWindowInfo& window) {
            if (window.windowNumber)
                order.push_back(*window.windowNumber);
        });
    return order;
}

std::vector<FoundWindow> WindowFinder::windows() const
{
    std::map<WindowID, FoundWindow> byID;
    for (auto& [space, chips] : m_viewModel.chipsBySpace.value()) {
        for (auto& chip : chips) {
            auto [found, isNew] = byID.try_emplace(chip.id, FoundWindow{chip, space});
            if (!isNew)
                found->second.space.reset();
        }
    }
    std::vector<FoundWindow> windows;
    windows.reserve(byID.size());
    auto take = [&](auto found) {
        windows.push_back(std::move(found->second));
        byID.erase(found);
    };
    for (auto id : order()) {
        if (auto found = byID.find(id); found != byID.end())
            take(found);
    }
    while (!byID.empty())
        take(byID.begin());
    return windows;
}

/// A full-screen space is its window's own.
bool WindowFinder::canBring(const FoundWindow& window, SpaceID to) const
{
    auto isOrdinary = [this](SpaceID space) {
        auto& spaces = m_viewModel.spaces.value();
        auto found = std::ranges::find(spaces, space, &SpaceWindows::Info::spaceID);
        return found != spaces.end() && found->spaceType != kFullscreenSpaceType;
    };
    return window.space && *window.space != to && isOrdinary(*window.space) && isOrdinary(to);
}

// MARK: The search

const WindowFinder::Terms& WindowFinder::terms(const ChipData& chip)
{
    auto source = chip.windowTitle + " " + chip.appName;
    auto& terms = m_terms[chip.id];
    if (terms.source != source) {
        terms.text = SearchText{normalised(source, m_text), m_text};
        terms.words = searchTokens(source, m_text);
        terms.source = std::move(source);
    }
    return terms;
}

std::vector<FoundWindow> WindowFinder::search(
    const std::vector<FoundWindow>& windows, std::string_view query)
{
    auto words = wordsOf(query, m_text);
    if (words.empty())
        return windows;
    if (m_terms.size() > 2 * windows.size() + 1)
        m_terms.clear();
    std::vector<FoundWindow> beginning;
    std::vector<FoundWindow> inside;
    for (auto& window : windows) {
        auto& its = terms(window.chip);
        auto match = WordMatch::beginning;
        for (auto& word : words) {
            bool begins = std::ranges::any_of(its.words.words(),
                [&](auto& each) { return its.words.textFrom(each).starts_with(word); });
            if (!begins)
                match = std::min(match,
                    its.text.find(word) == std::string::npos ? WordMatch::none : WordMatch::inside);
        }
        if (match != WordMatch::none)
            (match == WordMatch::beginning ? beginning : inside).push_back(window);
    }
    beginning.insert(beginning.end(), inside.begin(), inside.end());
    return beginning;
}

}
