#pragma once

#include <string>
#include <vector>

#include "Quorvel/Core/PinStore.h"
#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

/// The launcher, with applications and pins to be listed in it.
struct LauncherFixture : BarFixture {
    std::vector<std::string> names{"Calendar", "Mail", "Maps", "Music", "Notes", "Safari"};

    void install(const std::string& name, bool hasIdentifier = true)
    {
        BundleDescription description;
        description.displayName = name;
        if (hasIdentifier)
            description.identifier = name;
        desktop.install(pathOf(name), description);
    }
    static std::string pathOf(const std::string& name) { return "/Applications/" + name + ".app"; }
    void installAll()
    {
        for (auto& name : names)
            install(name);
    }
    void startWithApplications()
    {
        installAll();
        start();
    }
    PinStore& pins() { return runtime->barManager()->pinStore(); }
    void pin(const std::vector<std::string>& ids)
    {
        for (auto& id : ids)
            pins().setPin(id, PinDestination::launcher, true);
    }
    std::vector<std::string> pinned() { return pins().pinnedAppIDs(PinDestination::launcher); }

    Point button() { return content().menuButtonFrame().centre(); }
    void clickButton()
    {
        panel().click(button());
        desktop.drain();
    }
    bool isOpen() { return desktop.surfaces().launcher() != nullptr; }
    FakePanel& launcher() { return *desktop.surfaces().launcher(); }
    const AppLauncherContent& shown()
    {
        return BarViews::panel(*runtime->barManager()->launcherPanel()).content();
    }
    /// The rows in sight: * selected, pins in brackets.
    std::string rows()
    {
        std::string text;
        for (auto& row : shown().rowPlaces()) {
            auto name = row.section == AppListSection::pinned ? "[" + row.id + "]" : row.id;
            text += (text.empty() ? "" : " ") + std::string{row.isSelected ? "*" : ""} + name;
        }
        return text;
    }
    Rect rowFrame(const std::string& id, AppListSection section = AppListSection::main)
    {
        for (auto& row : shown().rowPlaces()) {
            if (row.id == id && row.section == section)
                return row.frame;
        }
        return {};
    }
    Point pinPlace(const std::string& id) { return rowFrame(id, AppListSection::pinned).centre(); }
    void key(KeyCode code, bool isRepeat = false)
    {
        launcher().pressKey({.keyCode = code, .isRepeat = isRepeat});
        desktop.drain();
    }
    void type(const std::string& text)
    {
        launcher().type(text);
        desktop.drain();
    }
    void openMenuOf(const std::string& id, AppListSection section = AppListSection::main)
    {
        launcher().click(rowFrame(id, section).centre(), PointerButton::secondary);
        desktop.drain();
    }
    std::vector<AccessibleElement*> elements() { return launcher().elements(); }
    std::vector<std::string> opened() { return desktop.workspace().opened(); }
    bool says(const std::string& text) { return launcher().render().text(text) != nullptr; }
};

}
