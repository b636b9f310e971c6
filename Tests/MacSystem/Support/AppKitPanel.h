#pragma once

#include <set>

#include "Hosts/MacOS/Rules/SystemPanel.h"
#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

/// AppKit's panel: believes at once that it is key, and lies where the window server puts it.
struct AppKitPanel final : SystemPanel {
    explicit AppKitPanel(FakeDesktop& desktop_) : desktop(desktop_) { }

    void orderIn() override
    {
        if (!std::exchange(isIn, true) && !window)
            window = desktop.open(process, {.title = "Bar"});
        note();
    }
    void orderOut() override { isIn = false; }
    void setUnseen(bool value) override
    {
        isUnseen = value;
        note();
    }
    std::optional<WindowID> number() const override { return window; }
    void becomeKey() override { isKeyNow = mayBecomeKey; }
    void resignKey() override { isKeyNow = false; }
    bool isKey() const override { return isKeyNow; }
    bool isVisible() const override { return isIn; }
    void directKeysToContent() override { ++turnsToContent; }
    void setClientSeesKeysFirst(bool value) override { clientSeesKeysFirst = value; }
    void activateProgram() override { isProgramActive = true; }
    void handBackActivation() override { isProgramActive = false; }

    void note()
    {
        if (isIn && !isUnseen)
            seenOn.merge(std::set{desktop.window(*window).spaces});
    }

    FakeDesktop& desktop;
    ProcessID process = desktop.launch({.name = "Quorvel"});
    std::optional<WindowID> window;
    std::set<SpaceID> seenOn;
    bool isIn = false;
    bool isUnseen = false;
    bool isKeyNow = false;
    bool mayBecomeKey = true;
    bool clientSeesKeysFirst = false;
    bool isProgramActive = false;
    int turnsToContent = 0;
};

}
