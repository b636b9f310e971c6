#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <xcb/xcb.h>

#include "Hosts/X11/Desktop/SwitchAtoms.h"

namespace quorvel::xdg::x11 {

class Connection;
class RequestBatch;

/// What the window manager writes on the root window. Each property is read at most once per turn.
/// Main thread.
class RootState {
public:
    explicit RootState(Connection&);

    /// Notes a changed property; false if it is none of these.
    bool propertyDidChange(xcb_atom_t);
    void markAllStale() { m_stale = kAll; }
    void markStackingStale() { m_stale |= stackingBit; }
    bool isStale() const { return m_stale != 0; }
    bool isListStale() const { return (m_stale & clientsBit) != 0; }
    void request(RequestBatch&);
    /// Whether the lists were read since the last call.
    bool takeListDidChange() { return std::exchange(m_listDidChange, false); }
    bool takeStackingDidChange() { return std::exchange(m_stackingDidChange, false); }

    bool takeSwitchesDidChange() { return std::exchange(m_switchesDidChange, false); }

    const ManagerSwitches& switches() const { return m_switches; }
    const std::vector<xcb_window_t>& clients() const { return m_clients; }
    /// The windows below the root, most of them managers' frames. The manager's own list is not
    /// asked: icewm writes it before it changes the order.
    const std::vector<xcb_window_t>& bottomToTop() const { return m_bottomToTop; }
    xcb_window_t activeWindow() const { return m_activeWindow; }
    bool isShowingDesktop() const { return m_isShowingDesktop; }
    /// How often the value has been read.
    unsigned showingDesktopReads(bool isShowing) const { return m_showingDesktopReads[isShowing]; }
    std::uint32_t currentDesktop() const { return m_currentDesktop.value_or(0); }
    /// At least 1; 1 for a manager without desktops.
    std::uint32_t desktopCount() const;
    bool hasDesktops() const { return m_desktopCount.has_value(); }
    const std::vector<std::string>& desktopNames() const { return m_desktopNames; }

    /// A manager that leaves deletes its properties; its last values stay until the next manager
    /// has written its own.
    void setKeepsLastWords(bool keeps) { m_keepsLastWords = keeps; }

private:
    enum Bit : unsigned {
        clientsBit = 1,
        stackingBit = 2,
        activeBit = 4,
        currentBit = 8,
        countBit = 16,
        namesBit = 32,
        showingBit = 64,
        supportedBit = 128,
    };
    static constexpr unsigned kAll = 255;

    void requestSwitches(RequestBatch&);
    void requestDesktops(RequestBatch&, unsigned stale);
    void keepOrSet(std::optional<std::uint32_t>& target, std::optional<std::uint32_t> value) const;

    Connection& m_connection;
    unsigned m_stale = kAll;
    bool m_keepsLastWords = false;
    bool m_listDidChange = false;
    bool m_stackingDidChange = false;
    bool m_switchesDidChange = false;
    ManagerSwitches m_switches;
    std::vector<xcb_window_t> m_clients;
    std::vector<xcb_window_t> m_bottomToTop;
    xcb_window_t m_activeWindow = XCB_WINDOW_NONE;
    bool m_isShowingDesktop = false;
    std::array<unsigned, 2> m_showingDesktopReads{};
    std::optional<std::uint32_t> m_currentDesktop;
    std::optional<std::uint32_t> m_desktopCount;
    std::vector<std::string> m_desktopNames;
};

}
