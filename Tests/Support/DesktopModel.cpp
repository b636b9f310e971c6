#include "Tests/Support/DesktopModel.h"

#include <algorithm>

namespace quorvel::test {

FakeApplication* DesktopModel::application(ProcessID pid)
{
    auto found = applications.find(pid);
    return found == applications.end() ? nullptr : &found->second;
}

FakeWindow* DesktopModel::window(WindowID id)
{
    auto found = windows.find(id);
    return found == windows.end() ? nullptr : found->second.get();
}

FakeDisplay* DesktopModel::displayOfSpace(SpaceID space)
{
    for (auto& display : displays) {
        if (std::ranges::find(display.spaces, space, &FakeSpace::id) != display.spaces.end())
            return &display;
    }
    return nullptr;
}

const FakeDisplay* DesktopModel::display(DisplayNumber number) const
{
    auto found = std::ranges::find(displays, number, &FakeDisplay::number);
    return found == displays.end() ? nullptr : &*found;
}

bool DesktopModel::isCurrent(SpaceID space) const
{
    return std::ranges::find(displays, space, &FakeDisplay::current) != displays.end();
}

std::vector<FakeWindow*> DesktopModel::windowsOf(ProcessID pid)
{
    std::vector<FakeWindow*> found;
    for (auto id : stacking) {
        if (auto* candidate = window(id); candidate && candidate->pid == pid)
            found.push_back(candidate);
    }
    return found;
}

}
