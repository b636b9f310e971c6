#pragma once

#include <cstdint>
#include <optional>

#include <xcb/xcb.h>
#include <xcb/xinput.h>

namespace quorvel::xdg::x11 {

class Connection;

/// One kind of raw event of the pointer's buttons: such events come for other programs' windows
/// too, and while another client holds the pointer. Main thread.
class RawButtons {
public:
    /// `devices` is one of the two numbers that stand for several devices. A client has one
    /// selection for each number, so that users of different numbers do not disturb each other.
    RawButtons(Connection&, xcb_input_device_id_t devices, std::uint16_t eventType);

    /// Whether the server supports such events.
    bool areKnown() const { return m_extension.has_value(); }
    void listen(bool isOn) const;
    bool areIn(const xcb_generic_event_t*) const;

private:
    Connection& m_connection;
    const xcb_input_device_id_t m_devices;
    const std::uint16_t m_eventType;
    std::optional<std::uint8_t> m_extension; ///< the major opcode that generic events carry
};

}
