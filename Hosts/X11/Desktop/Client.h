#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include <xcb/xcb.h>

#include "Hosts/Linux/Desktop/DesktopModel.h"
#include "Hosts/X11/Desktop/Properties.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Identifiers.h"

namespace quorvel::xdg::x11 {

inline constexpr std::uint32_t kEveryDesktop = 0xFFFFFFFF;

enum class WindowType {
    normal,
    dialog,
    utility,
    splash,
    toolbar,
    menu,
    notification,
    dock,
    desktop
};

/// Groups of facts about a client that are read together.
enum class Facet : std::uint32_t {
    netName = 1 << 0,
    wmName = 1 << 1,
    windowClass = 1 << 2,
    applicationID = 1 << 3,
    process = 1 << 4,
    type = 1 << 5,
    state = 1 << 6,
    desktop = 1 << 7,
    parent = 1 << 8,
    hints = 1 << 9,
    frameExtents = 1 << 10,
    gtkExtents = 1 << 11,
    opacity = 1 << 12,
    place = 1 << 13,
    strut = 1 << 14,
    allowedActions = 1 << 15,
    role = 1 << 16,
};

class Facets {
public:
    constexpr Facets() = default;
    constexpr Facets(Facet facet) : m_bits(static_cast<std::uint32_t>(facet)) { }

    constexpr bool contains(Facet facet) const
    {
        return (m_bits & static_cast<std::uint32_t>(facet)) != 0;
    }
    constexpr bool isEmpty() const { return m_bits == 0; }
    constexpr Facets operator|(Facets other) const { return Facets{m_bits | other.m_bits}; }
    constexpr Facets operator&(Facets other) const { return Facets{m_bits & other.m_bits}; }
    constexpr Facets without(Facets other) const { return Facets{m_bits & ~other.m_bits}; }
    constexpr Facets& operator|=(Facets other) { return *this = *this | other; }

private:
    constexpr explicit Facets(std::uint32_t bits) : m_bits(bits) { }
    std::uint32_t m_bits = 0;
};

constexpr Facets operator|(Facet a, Facet b)
{
    return Facets{a} | b;
}

/// What the window manager says about a client; unreliable while there is no manager.
inline constexpr Facets kManagerFacets
    = Facet::state | Facet::desktop | Facet::frameExtents | Facet::place | Facet::allowedActions;
/// What is read when a client is first seen.
inline constexpr Facets kFirstFacets = Facet::netName | Facet::wmName | Facet::windowClass
    | Facet::applicationID | Facet::process | Facet::type | Facet::state | Facet::desktop
    | Facet::parent | Facet::hints | Facet::frameExtents | Facet::gtkExtents | Facet::opacity
    | Facet::place | Facet::allowedActions | Facet::role;

struct ClientState {
    bool isHidden = false;
    bool isShaded = false;
    bool isModal = false;
    bool isFullScreen = false;
    bool isMaximizedVertically = false;
    bool isMaximizedHorizontally = false;
    bool isKeptAbove = false;
    bool skipsTaskbar = false;
    bool demandsAttention = false;

    friend bool operator==(const ClientState&, const ClientState&) = default;
};

/// A managed client as its properties describe it, before translation into the model. Pixels,
/// origin at the top left of the X screen.
struct Client {
    xcb_window_t window = XCB_WINDOW_NONE;
    WindowID id{};
    Facets stale = kFirstFacets;

    std::optional<std::string> netName;
    std::optional<std::string> wmName;
    WindowClass windowClass;
    std::optional<std::string> role; ///< among the windows of its client
    std::optional<std::string> applicationID;
    std::optional<std::uint32_t> serverProcess; ///< from the X server
    std::optional<std::uint32_t> claimedProcess; ///< `_NET_WM_PID`
    std::optional<std::string> machine;
    std::optional<WindowType> type; ///< absent: the client names no known type
    ClientState state;
    std::optional<WindowSwitches> allowed; ///< absent: the manager does not say
    std::optional<std::uint32_t> desktop;
    std::optional<xcb_window_t> parent; ///< `WM_TRANSIENT_FOR`, unchecked
    WindowHints hints;
    bool hasOtherIcon = false; ///< the icon changed since it was last announced
    Extents frameExtents;
    Extents gtkExtents;
    double opacity = 1;
    Rect place; ///< of the client itself, without its frame
    Extents strut; ///< what a dock reserves at the edges of the X screen

    /// The window that it lies in on the X server: the root, or the manager's frame. None until
    /// it is known.
    xcb_window_t container = XCB_WINDOW_NONE;
    /// The ancestor below the root: it moves when the user moves the window.
    xcb_window_t topLevel = XCB_WINDOW_NONE;
    std::optional<Rect> framePlace; ///< of a frame, as it was last told
    bool isAncestryStale = true;

    Instant firstSeen;
    bool isAnnounced = false;
    bool isDirty = true; ///< something was read since the last translation into the model
    bool isGone = false; ///< destroyed, or never existed
    bool isUnmapped = false;
    std::optional<Instant> leavesAt; ///< off the list, perhaps because the manager left
    bool wasHidden = false;
    /// Marked as hidden by "show desktop", which is not minimising.
    bool isHiddenByShowingDesktop = false;
    /// Until then it is undecided whether a hidden window is minimised.
    std::optional<Instant> minimizedSettlesAt;
    bool isMinimized = false;

    std::string title() const { return netName ? *netName : wmName.value_or(std::string{}); }

    Rect frame() const
    {
        double left = double(frameExtents.left) - gtkExtents.left;
        double top = double(frameExtents.top) - gtkExtents.top;
        double right = double(frameExtents.right) - gtkExtents.right;
        double bottom = double(frameExtents.bottom) - gtkExtents.bottom;
        return {place.x - left, place.y - top, std::max(0.0, place.width + left + right),
            std::max(0.0, place.height + top + bottom)};
    }
};

}
