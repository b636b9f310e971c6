#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>

#include <xcb/xcb.h>

#include "Hosts/X11/Desktop/Properties.h"

namespace quorvel::xdg::x11 {

class Connection;

/// Windows that a compositor shows nearly transparent, or that are on their way there or back. What
/// each says of its opacity itself is put back in the end, unless its program has said something
/// else meanwhile. It is noted on the root too, for the next bar, should this one be killed. Main
/// thread.
class FadedWindows {
public:
    /// In the end. A hundredth of 0xFFFFFFFF: many that lie above the one that is shown must not
    /// hide it. By its lower half the next bar tells it, and the values on the way, from what a
    /// program has set itself.
    static constexpr std::uint32_t kOpacity = 0x028B57C1;

    /// Puts back what a bar has left that was killed.
    FadedWindows(Connection&, const NotedOpacities& left);
    ~FadedWindows();
    FadedWindows(const FadedWindows&) = delete;
    FadedWindows& operator=(const FadedWindows&) = delete;

    /// These and no others are to be so: `fade` brings them there. Those of the rest that nobody
    /// can see are put back with its next call, whatever is left of their way.
    void set(const std::set<xcb_window_t>&, const std::function<bool(xcb_window_t)>& isSeen);
    /// By this share of the whole way. True: some are not there yet.
    bool fade(double by);

private:
    struct Opacity;
    struct Fading {
        std::optional<std::uint32_t> before; ///< absent: it said nothing
        std::optional<std::uint32_t> now; ///< unless its program has changed it
        double share = 0; ///< of the way
        bool isWanted = true;

        bool isThere() const { return isWanted && share >= 1; }
        bool isOver() const { return !isWanted && share <= 0; }
    };

    std::map<xcb_window_t, Opacity> read(const std::set<xcb_window_t>&) const;
    void add(const std::set<xcb_window_t>&);
    void move(xcb_window_t, std::optional<std::uint32_t> current, double by);
    void write(xcb_window_t, std::optional<std::uint32_t>) const;
    void putBack(const NotedOpacities&) const;
    void note() const;

    Connection& m_connection;
    std::map<xcb_window_t, Fading> m_windows;
};

}
