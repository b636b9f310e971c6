#pragma once

#include <optional>
#include <vector>

#include "Quorvel/Platform/Peeking.h"

namespace quorvel::xdg {

class PeekRequests;
class SharedModel;

/// Shows a window alone: which others fade for it, and whether it is raised instead. Main thread.
class DesktopPeeking final : public Peeking {
public:
    /// Both outlive it.
    DesktopPeeking(const SharedModel&, PeekRequests&);
    ~DesktopPeeking() override;

    bool showAlone(WindowID) override;
    void showAll() override;
    bool fade(double by) override;

private:
    /// Absent if the window itself cannot be seen.
    std::optional<std::vector<WindowID>> windowsBeside(WindowID) const;

    const SharedModel& m_model;
    PeekRequests& m_requests;
};

}
