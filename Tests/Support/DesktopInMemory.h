#pragma once

#include <functional>
#include <string>

#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

/// What the contract of the seam asks of a host whose desktop is a fake one.
struct DesktopInMemory {
    FakeDesktop desktop;
    ProcessID owner = desktop.launch();

    Dispatch& dispatch() { return desktop.dispatch(); }
    void open(const std::string& title) { desktop.open(owner, {.title = title}); }
    void retitle(WindowID id, const std::string& title) { desktop.retitle(id, title); }
    void close(WindowID id) { desktop.close(id); }
    bool runUntil(const std::function<bool()>& isDone)
    {
        for (int i = 0; i < 50 && !isDone(); ++i)
            desktop.advance(seconds(0.1));
        return isDone();
    }
};

}
