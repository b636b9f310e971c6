#pragma once

#include <cstdint>
#include <optional>

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

/// How a panel takes part in spaces, Mission Control and Stage Manager, with the values of
/// `NSWindowCollectionBehavior`. A window may have only one of the values that a comment lists
/// together.
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

/// A panel's properties for the window system.
struct PanelTraits {
    /// With the values of `CGWindowLevelKey`.
    enum class Level { normal = 4, floating = 5, dock = 7, popUpMenu = 11 };

    /// When it has the keyboard.
    enum class Keys {
        /// While its client asks for it. Made key, it takes the user to its space.
        onRequest,
        /// From when it comes up, wherever the user is: it is there for what is typed. Its client
        /// sees keys before a text field does, and hears also that they never came, or came too
        /// late and are gone.
        fromTheStart,
        /// Whenever the user turns to it, as to any program's window; it comes up with its program.
        whenKey,
    };

    Level level = Level::dock;
    std::uint64_t collectionBehavior = 0;
    /// Whether clicks go through all of it, or through none though it is transparent. Absent:
    /// through its transparent pixels, which ends once the system is told either.
    std::optional<bool> ignoresMouse{};
    /// It has a title and a close button, and the system may move it.
    bool isTitled = false;
    /// It is on one space; other panels are on whatever space is shown.
    bool hasOwnSpace = true;
    Keys keys = Keys::onRequest;
    /// By the user, with its button or the key for that.
    bool isClosable = false;

    static PanelTraits of(PanelKind);
};

}
