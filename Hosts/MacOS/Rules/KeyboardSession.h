#pragma once

#include "Hosts/MacOS/Rules/PanelTraits.h"
#include "Hosts/MacOS/Rules/SystemPanel.h"
#include "Quorvel/Platform/Dispatch.h"

namespace quorvel {

class PanelPlace;
class SurfaceClient;

/// The keyboard of one panel, which has it although another program is active. A panel is the key
/// window as soon as it asks; whether keys arrive is known only after the window server has
/// answered, so the client is told of the keyboard a little later.
class KeyboardSession {
public:
    static constexpr Duration kPatience = seconds(0.05);

    KeyboardSession(SystemPanel&, SurfaceClient&, Queue& mainQueue, PanelTraits::Keys);

    /// False while nobody would see what the keys do.
    bool take();
    void release();
    void makeKeyAndOrderFront(PanelPlace&);
    /// The panel was ordered out.
    void panelDidGo();
    /// The panel became the key window, or stopped being it.
    void keyDidChange(bool isKey);
    void setCanBecomeKey(bool canBecomeKey) { m_canBecomeKey = canBecomeKey; }
    /// Whether the system may make the panel the key window.
    bool mayBecomeKey() const;
    /// The keyboard is requested or held.
    bool isWanted() const { return m_isWanted; }
    /// Keys go to the client.
    bool isHeld() const { return m_isHeld; }

private:
    using Keys = PanelTraits::Keys;

    void request();
    void confirm();
    void end();

    SystemPanel& m_panel;
    SurfaceClient& m_client;
    Queue& m_mainQueue;
    const Keys m_keys;
    bool m_canBecomeKey = false;
    bool m_isWanted = false;
    bool m_isHeld = false;
    WorkItem m_confirmation;
};

}
