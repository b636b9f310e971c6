#pragma once

#include <algorithm>
#include <memory>
#include <optional>

#include "Quorvel/Core/BarManager.h"
#include "Quorvel/Core/PinStore.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Quorvel.h"
#include "Quorvel/Skylight/WindowStore.h"
#include "Quorvel/Views/BarViews.h"
#include "Tests/Support/FakeDesktop.h"
#include "Tests/Support/Matchers.h"

namespace quorvel::test {

/// The whole program on a desktop, as its user meets it.
struct BarFixture : testing::Test {
    FakeDesktop desktop;
    std::unique_ptr<Runtime> runtime;

    /// A chip for each window.
    void start()
    {
        runtime = std::make_unique<Runtime>(desktop.platform());
        runtime->userSettings().setGroupWindowsByApp(false);
        QuorvelApp::launch(*runtime);
        settle();
    }
    /// Past every poll that follows a launch or a new window.
    void settle() { desktop.advance(seconds(15)); }

    BarManager& manager() { return *runtime->barManager(); }
    BarViewModel& model() { return manager().viewModel(); }
    FakeWindowServer& server() { return desktop.windowServer(); }
    SpaceID current(std::size_t display = 0) { return desktop.model().displays[display].current; }
    BarPanel& bar(SpaceID space = SpaceID{1})
    {
        return BarViews::panel(*runtime->barManager()->panels().at(space));
    }
    FakePanel& panel(SpaceID space = SpaceID{1}) { return *desktop.surfaces().panel(space); }
    BarContentView& content(SpaceID space = SpaceID{1}) { return *bar(space).content(); }
    template <typename Frames> static std::vector<std::string> idsOf(const Frames& frames)
    {
        std::vector<std::string> ids;
        for (auto& [id, frame] : frames)
            ids.push_back(id);
        return ids;
    }
    std::vector<std::string> chipIDs() { return idsOf(content().chipFrames()); }
    std::vector<std::string> pinIDs() { return idsOf(content().pinFrames()); }

    /// In the bar of the first space; absent if it has no chip there.
    std::optional<Rect> chipFrame(const std::string& item)
    {
        for (auto& [id, frame] : content().chipFrames()) {
            if (id == item)
                return frame;
        }
        return {};
    }
    std::optional<Rect> chipFrame(WindowID window) { return chipFrame(displayItemID(window)); }
    /// What the chips of a bar say, without the cells of the spaces, which are drawn before them.
    static std::vector<std::string> chipTexts(const FakePanel& panel)
    {
        auto texts = panel.render().texts();
        auto isNumber = [](const std::string& text) {
            return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
        };
        texts.erase(texts.begin(), std::ranges::find_if_not(texts, isNumber));
        return texts;
    }
    std::vector<std::string> chipTexts(SpaceID space = SpaceID{1})
    {
        return chipTexts(panel(space));
    }
    /// Also of a space whose bar has not been shown yet.
    std::vector<std::string> chipTitles(SpaceID space)
    {
        std::vector<std::string> titles;
        for (auto& chip : model().chipsBySpace.value().at(space))
            titles.push_back(chip.windowTitle);
        return titles;
    }
    const ChipData* chip(WindowID window)
    {
        for (auto& [space, chips] : model().chipsBySpace.value()) {
            for (auto& candidate : chips) {
                if (candidate.id == window)
                    return &candidate;
            }
        }
        return nullptr;
    }
    /// With real pointer events, up to where the applications have answered.
    void clickChip(WindowID window, PointerButton button = PointerButton::primary)
    {
        panel().click(chipFrame(window)->centre(), button);
        desktop.drain();
    }
    /// Away from the bar, so that nothing is held still.
    void leave()
    {
        panel().leave();
        desktop.drain();
    }
};

/// Two applications with three windows, of which the first has the focus.
struct ThreeWindows : BarFixture {
    ProcessID mail = desktop.launch({.name = "Mail", .bundleIdentifier = "mail"});
    ProcessID editor = desktop.launch({.name = "Editor", .bundleIdentifier = "editor"});
    WindowID inbox = desktop.open(mail, {.title = "Inbox"});
    WindowID draft = desktop.open(mail, {.title = "Draft"});
    WindowID notes = desktop.open(editor, {.title = "Notes"});

    ThreeWindows()
    {
        for (auto* name : {"player", "browser"})
            desktop.workspace().install(name, std::string{"/Applications/"} + name);
        desktop.focus(inbox);
        desktop.activate(mail);
        start();
    }

    /// More than there is room for; none of them gets the focus.
    std::vector<WindowID> openMany()
    {
        std::vector<WindowID> many;
        for (int i = 0; i < 60; ++i)
            many.push_back(desktop.open(editor, {.title = "Window"}));
        settle();
        return many;
    }
    FakePanel* popup() { return desktop.surfaces().popup(); }
    Point middleOf(WindowID window) { return chipFrame(window)->centre(); }
    void pin(const std::string& id) { manager().pinStore().setPin(id, PinDestination::bar, true); }
    void hoverUntilShown(WindowID window)
    {
        panel().movePointer(middleOf(window));
        desktop.advance(seconds(0.25));
    }
};

}
