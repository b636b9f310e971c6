#pragma once

#include "Hosts/MacOS/Rules/SystemPanel.h"
#include "Quorvel/Platform/Dispatch.h"

namespace quorvel {

class SurfaceClient;

/// The keyboard of one panel, which the program has although another one is active. A panel counts
/// as the key window as soon as it asks; whether keys come is known when the window server has had
/// its say, so the client hears of the keyboard a little later.
class KeyboardSession {
public:
    static constexpr Duration kPatience = seconds(0.05);

    KeyboardSession(SystemPanel&, SurfaceClient&, Queue& mainQueue);

    void take();
    void release();
    /// The panel became the key window or is none any more.
    void keyDidChange(bool isKey);
    /// Asked for or had.
    bool isWanted() const { return m_isWanted; }
    /// Keys are the client's.
    bool isHeld() const { return m_isHeld; }

private:
    void confirm();
    void end();

    SystemPanel& m_panel;
    SurfaceClient& m_client;
    Queue& m_mainQueue;
    bool m_isWanted = false;
    bool m_isHeld = false;
    WorkItem m_confirmation;
};

}
