#pragma once

#include <cstdint>
#include <map>
#include <set>

#include <xcb/xcb.h>

#include "Hosts/X11/Desktop/Properties.h"

namespace quorvel::xdg::x11 {

class Connection;

/// Windows that a compositor shows nearly transparent. What each says of its opacity itself is put
/// back afterwards, unless its program has said something else meanwhile. It is noted on the root
/// too, for the next bar, should this one be killed. Main thread.
class FadedWindows {
public:
    /// A hundredth of 0xFFFFFFFF: many that lie above the one that is shown must not hide it. Not a
    /// round value, so that what a program has set itself is told from it.
    static constexpr std::uint32_t kOpacity = 0x028B57C1;

    /// Puts back what a bar has left that was killed.
    explicit FadedWindows(Connection&);
    ~FadedWindows();
    FadedWindows(const FadedWindows&) = delete;
    FadedWindows& operator=(const FadedWindows&) = delete;

    /// These and no others.
    void set(const std::set<xcb_window_t>&);

private:
    struct Opacity;

    std::map<xcb_window_t, Opacity> read(const std::set<xcb_window_t>&) const;
    void fade(const std::set<xcb_window_t>&);
    void putBack(const NotedOpacities&);
    void note() const;

    Connection& m_connection;
    NotedOpacities m_before;
};

}
