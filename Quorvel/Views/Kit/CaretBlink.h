#pragma once

#include <functional>
#include <utility>

#include "Quorvel/Platform/Dispatch.h"

namespace quorvel {

/// Whether the caret of a field is seen. It blinks while the field has the keyboard, and after a
/// while without a key it stays on: a window that is left open wakes nobody up.
class CaretBlink {
public:
    static constexpr Duration kOn = seconds(0.8);
    static constexpr Duration kOff = seconds(0.4);
    static constexpr Duration kLasts = seconds(10); ///< after the last key

    CaretBlink(Dispatch& dispatch, std::function<void()> onChange)
        : m_dispatch(dispatch)
        , m_onChange(std::move(onChange))
    {
    }

    /// Shows it and begins anew. Without blinking it just stays on.
    void restart(bool blinks);
    void stop();
    bool isOn() const { return m_isOn; }

private:
    void turn(bool isOn);

    Dispatch& m_dispatch;
    std::function<void()> m_onChange;
    bool m_isOn = false;
    Instant m_end;
    WorkItem m_next;
};

}
