#pragma once

#include "Quorvel/Platform/ApplicationMatching.h"

namespace quorvel::xdg {

class DesktopEntries;
class DesktopTracker;

/// How windows are matched to desktop files. Main thread.
class DesktopMatching final : public ApplicationMatching {
public:
    DesktopMatching(DesktopTracker&, DesktopEntries&);

    std::optional<ApplicationMatch> match(WindowID) const override;
    void setMended(const Mended&) override;

private:
    DesktopTracker& m_tracker;
    DesktopEntries& m_entries;
};

}
