#pragma once

#include <optional>
#include <vector>

#include <xcb/randr.h>

#include "Hosts/X11/Reply.h"
#include "Quorvel/Platform/Geometry.h"

namespace quorvel::xdg::x11 {

class Connection;

/// Pictures a second of what lies where on the X screen, from RandR. Asked in two steps, each of
/// which sends and does not wait, so that it goes along with other questions. Main thread.
class RefreshRates {
public:
    /// Of a screen that says nothing, or nonsense.
    static constexpr double kUsual = 60;

    /// The first step. The server has RandR.
    explicit RefreshRates(Connection&);
    ~RefreshRates();
    RefreshRates(const RefreshRates&) = delete;
    RefreshRates& operator=(const RefreshRates&) = delete;

    /// The second step: waits for the answer to the first.
    void askForAreas();
    /// Of the area that this point of the X screen (pixels) lies in: waits for the answers to the
    /// second step.
    double at(Point);

private:
    struct Area {
        Rect pixels;
        double rate = 0;
    };

    void readAreas();
    double rateOf(xcb_randr_mode_t) const;

    Connection& m_connection;
    std::optional<xcb_randr_get_screen_resources_current_cookie_t> m_asked;
    Reply<xcb_randr_get_screen_resources_current_reply_t> m_resources;
    std::vector<xcb_randr_get_crtc_info_cookie_t> m_askedAreas;
    std::vector<Area> m_areas;
};

}
