#pragma once

#include <cstdint>
#include <initializer_list>

namespace quorvel {

/// With the values of `NSDragOperation`.
namespace drag {

inline constexpr std::uint64_t kNone = 0;
inline constexpr std::uint64_t kCopy = 1;
inline constexpr std::uint64_t kLink = 2;
inline constexpr std::uint64_t kGeneric = 4;
inline constexpr std::uint64_t kPrivate = 8;
inline constexpr std::uint64_t kMove = 16;
inline constexpr std::uint64_t kDelete = 32;

}

/// The operation to answer for files that are dropped to be opened, given the source's mask: an
/// answer outside the mask refuses the drop. Never one that makes the source delete the files.
constexpr std::uint64_t dropOperation(std::uint64_t sourceMask)
{
    for (const auto operation : {drag::kGeneric, drag::kLink, drag::kCopy}) {
        if (sourceMask & operation)
            return operation;
    }
    return drag::kNone;
}

}
