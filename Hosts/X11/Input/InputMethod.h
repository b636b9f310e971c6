#pragma once

#include <deque>
#include <string>

#include <xcb/xcb.h>

#include "Hosts/X11/Keyboard.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Published.h"

struct _xcb_xim_t;
struct _xcb_im_preedit_draw_fr_t;
struct _xcb_im_get_im_values_reply_fr_t;

namespace quorvel::xdg::x11 {

class Connection;
struct InputMethodLibrary;

/// Hears what the input method makes of the keys that it took.
class InputMethodClient {
public:
    virtual ~InputMethodClient() = default;

    virtual void inputMethodCommits(const std::string& utf8) = 0;
    /// What is being composed, with the caret so many bytes into it; empty: nothing any more.
    virtual void inputMethodComposes(const std::string& utf8, std::size_t caret) = 0;
    /// It has no use for the key. Keys come back in the order in which they were taken.
    virtual void inputMethodReturns(const KeyPress&) = 0;
};

/// The user's input method: the program that `XMODIFIERS` names, over the X input method protocol.
/// It sees each key first, and what becomes of it is heard later. One that does not answer within
/// half a second is given up until somebody types anew, and its keys come back. Main thread.
class InputMethod {
public:
    InputMethod(Connection&, Dispatch&, InputMethodClient&);
    ~InputMethod();
    InputMethod(const InputMethod&) = delete;
    InputMethod& operator=(const InputMethod&) = delete;

    /// A field takes text now: connects if that has not been done. The window is where keys arrive.
    void focus(xcb_window_t);
    void unfocus();
    /// Where the caret's lower left corner is: pixels relative to the window.
    void setSpot(Point);
    /// What is being composed no longer concerns it.
    void forget();
    /// False: it takes no keys.
    bool take(const KeyPress&);

private:
    using Session = _xcb_xim_t;
    struct Callbacks;

    void begin();
    void end();
    void handle(const xcb_generic_event_t*);
    void opened();
    void keepNothing();
    /// For an answer, and not for ever.
    void wait();
    void answered();
    /// Sends what is due: the protocol knows one question at a time.
    void proceed();
    bool ask();
    bool askForStyles();
    bool makeContext();
    bool removeContext();
    bool sendSpot();
    bool sendKeys();

    void chooseStyle(const _xcb_im_get_im_values_reply_fr_t*);
    void contextMade(std::uint16_t);
    void returned(const xcb_key_press_event_t&);
    void drawComposition(const _xcb_im_preedit_draw_fr_t&);
    void moveCaret(std::size_t);
    void endComposition();
    std::string decode(const char* text, std::size_t length) const;

    Connection& m_connection;
    Dispatch& m_dispatch;
    InputMethodClient& m_client;
    const InputMethodLibrary* m_library = nullptr;
    Session* m_session = nullptr; ///< null: no keys are taken
    bool m_isOpen = false; ///< it has answered
    bool m_isLost = false; ///< it has gone, or makes no context
    bool m_isWaiting = false; ///< for the answer to a question
    bool m_isFocused = false;
    bool m_hasFocus = false; ///< as it has been told
    std::uint32_t m_style = 0; ///< 0 until it is known which ones there are
    std::uint32_t m_wantedEvents = 0;
    std::uint16_t m_context = 0; ///< 0 until it is made
    std::uint16_t m_oldContext = 0; ///< to be removed
    xcb_window_t m_window = XCB_WINDOW_NONE;
    xcb_point_t m_spot{};
    bool m_isSpotNew = false;
    std::deque<KeyPress> m_unsent;
    std::deque<KeyPress> m_sent; ///< since the last answer
    std::u32string m_composition;
    WorkItem m_patience;
    Subscription m_events;
};

}
