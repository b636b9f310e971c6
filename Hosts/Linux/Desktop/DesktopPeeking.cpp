#include "Hosts/Linux/Desktop/DesktopPeeking.h"

#include "Hosts/Linux/Desktop/DesktopModel.h"
#include "Hosts/Linux/Desktop/PeekRequests.h"

namespace quorvel::xdg {

namespace {

/// Parents that name each other in a circle end here.
constexpr int kLongestParentChain = 16;

bool isSeen(const DesktopModel& model, const WindowRecord& window)
{
    return window.layer == 0 && !window.isMinimized && window.isOn(model.activeSpace);
}

/// Its dialogs, and theirs.
bool belongsTo(const DesktopModel& model, const WindowRecord& window, WindowID other)
{
    auto* current = &window;
    for (int i = 0; current && i < kLongestParentChain; ++i) {
        if (current->id == other)
            return true;
        current = current->parent ? model.window(*current->parent) : nullptr;
    }
    return false;
}

}

DesktopPeeking::DesktopPeeking(const SharedModel& model, PeekRequests& requests)
    : m_model(model)
    , m_requests(requests)
{
}

DesktopPeeking::~DesktopPeeking()
{
    showAll();
    fade(1);
}

std::optional<std::vector<WindowID>> DesktopPeeking::windowsBeside(WindowID id) const
{
    return m_model.read([&](const DesktopModel& model) -> std::optional<std::vector<WindowID>> {
        auto* window = model.window(id);
        if (!window || !isSeen(model, *window))
            return std::nullopt;
        std::vector<WindowID> others;
        for (auto& [other, record] : model.windows) {
            if (isSeen(model, record) && !belongsTo(model, record, id))
                others.push_back(other);
        }
        return others;
    });
}

bool DesktopPeeking::showAlone(WindowID window)
{
    auto others = windowsBeside(window);
    if (!others) {
        showAll();
        return false;
    }
    bool fades = m_requests.canFade();
    m_requests.setFaded(fades ? *others : std::vector<WindowID>{});
    if (!fades)
        fade(1);
    m_requests.setRaised(fades ? std::nullopt : std::optional{window});
    return true;
}

void DesktopPeeking::showAll()
{
    m_requests.setFaded({});
    m_requests.setRaised(std::nullopt);
}

bool DesktopPeeking::fade(double by)
{
    return m_requests.fade(by);
}

}
