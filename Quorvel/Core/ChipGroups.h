#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Quorvel/Core/DisplayItem.h"

namespace quorvel {

class Trace;

/// Folds the chips of one application on one space into one, and remembers for each such group its
/// representative: the window that last had the focus, until it closes or stands alone. Main
/// thread.
class ChipGroups {
public:
    explicit ChipGroups(const Trace& trace) : m_trace(trace) { }

    /// Single chips and groups, in the order in which their applications first appear. The sequence
    /// number is for the trace.
    std::vector<DisplayItem> group(SpaceID, const std::vector<const ChipData*>&,
        std::optional<WindowID> focused, std::uint64_t sequence);

    /// From now on this window represents its group on the space.
    void prefer(SpaceID, std::string_view groupKey, WindowID);
    bool isPreferred(SpaceID, std::string_view groupKey, WindowID) const;
    /// Forgets the other spaces, whose numbers may never come again.
    void keepOnly(const std::set<SpaceID>&);

private:
    using Bucket = std::vector<const ChipData*>;

    using GroupOfSpace = std::pair<SpaceID, std::string>;

    DisplayItem single(const GroupOfSpace&, const ChipData&);
    DisplayItem grouped(const GroupOfSpace&, const Bucket&, std::optional<WindowID> focused);
    void follow(const GroupOfSpace&, const Bucket&, const ChipData* focused);
    std::optional<WindowID> preferred(const GroupOfSpace&) const;

    const Trace& m_trace;
    std::uint64_t m_sequence = 0;
    std::map<GroupOfSpace, WindowID> m_preferredWindowIDByGroupKey;
};

}
