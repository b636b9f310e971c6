#pragma once

#include <cstdint>

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

/// How a panel takes part in spaces, Mission Control and Stage Manager, in the numbers of
/// `NSWindowCollectionBehavior`. Of those that a comment joins, a window may have one.
namespace behavior {

inline constexpr std::uint64_t kCanJoinAllSpaces = 1 << 0; // or MoveToActiveSpace
inline constexpr std::uint64_t kMoveToActiveSpace = 1 << 1;
inline constexpr std::uint64_t kManaged = 1 << 2; // or Transient, or Stationary
inline constexpr std::uint64_t kTransient = 1 << 3;
inline constexpr std::uint64_t kStationary = 1 << 4;
inline constexpr std::uint64_t kIgnoresCycle = 1 << 6;
inline constexpr std::uint64_t kFullScreenPrimary = 1 << 7; // or Auxiliary, or None
inline constexpr std::uint64_t kFullScreenAuxiliary = 1 << 8;
inline constexpr std::uint64_t kFullScreenNone = 1 << 9;
inline constexpr std::uint64_t kPrimary = 1 << 16; // or Auxiliary, or CanJoinAllApplications
inline constexpr std::uint64_t kAuxiliary = 1 << 17;
inline constexpr std::uint64_t kCanJoinAllApplications = 1 << 18;

}

/// What a panel is to the window system.
struct PanelTraits {
    /// In the numbers of `CGWindowLevelKey`.
    enum class Level { normal = 4, dock = 7, popUpMenu = 11 };

    Level level = Level::dock;
    std::uint64_t collectionBehavior = 0;
    /// Clicks go through all of it. The system must not even be told "no": that would end their
    /// passing through what is transparent.
    bool ignoresMouse = false;
    /// It is on one space; the others are on whatever space is shown.
    bool hasOwnSpace = true;

    static PanelTraits of(PanelKind);
};

}
