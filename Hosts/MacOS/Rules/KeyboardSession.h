#pragma once

#include "Hosts/MacOS/Rules/SystemPanel.h"
#include "Quorvel/Platform/Dispatch.h"

namespace quorvel {

class SurfaceClient;

/// The keyboard of one panel, which has it although another program is active. A panel is the key
/// window as soon as it asks; whether keys arrive is known only after the window server has
/// answered, so the client is told of the keyboard a little later.
class KeyboardSession {
public:
    static constexpr Duration kPatience = seconds(0.05);

    /// Which end the client is told of. A panel that is there for its keys has to hear also that
    /// they never came, or came too late and are gone.
    enum class ToldEnds { ofHeldKeyboard, all };

    KeyboardSession(
        SystemPanel&, SurfaceClient&, Queue& mainQueue, ToldEnds = ToldEnds::ofHeldKeyboard);

    void take();
    void release();
    /// The panel became the key window, or stopped being it.
    void keyDidChange(bool isKey);
    /// The keyboard is requested or held.
    bool isWanted() const { return m_isWanted; }
    /// Keys go to the client.
    bool isHeld() const { return m_isHeld; }

private:
    void confirm();
    void end();

    SystemPanel& m_panel;
    SurfaceClient& m_client;
    Queue& m_mainQueue;
    ToldEnds m_toldEnds;
    bool m_isWanted = false;
    bool m_isHeld = false;
    WorkItem m_confirmation;
};

}
