#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <atspi/atspi.h>
#include <gio/gio.h>

#include "Tests/X11/Support/Connection.h"
#include "Tests/X11/Support/XServer.h"

namespace quorvel::x11tests {

/// An assistive program as users have it: it asks the desktop to show itself, finds the programs in
/// the registry, by the names of their files, and listens to what they announce. One in a process.
class ScreenReader {
public:
    struct Forget {
        void operator()(gpointer object) const { g_object_unref(object); }
    };
    using Element = std::unique_ptr<AtspiAccessible, Forget>;

    /// Switches assistive programs on, on the session bus.
    explicit ScreenReader(const XServer&);
    ScreenReader(const ScreenReader&) = delete;
    ScreenReader& operator=(const ScreenReader&) = delete;
    ~ScreenReader();

    /// Whether this was announced, by now, of something with this text in its name.
    bool hasHeard(const std::string& event, const std::string& text);
    /// The surface of the program that is seen; null if there is none.
    Element surfaceOf(const std::string& program) const;
    /// What is directly on it, in order; empty if there is none.
    std::vector<Element> elementsOf(const std::string& program) const;
    /// The first one on it whose name contains the text, what is in others last; null if there is
    /// none.
    Element find(const std::string& program, const std::string& text) const;
    /// The same for the first one that has just this name.
    Element named(const std::string& program, const std::string& name) const;

    /// The first of the role whose name contains the text and that is right, however deep it lies;
    /// null if there is none. The program is asked anew.
    Element seek(const std::string& program, AtspiRole, const std::string& text,
        const std::function<bool(const Element&)>& isRight) const;
    /// The same in an element, which may be it.
    static Element seekIn(const Element& whole, AtspiRole, const std::string& text,
        const std::function<bool(const Element&)>& isRight);
    /// Of the text field of that name, wherever it is; empty if there is none.
    std::string text(const std::string& program, const std::string& fieldName) const;
    bool setText(
        const std::string& program, const std::string& fieldName, const std::string& text) const;

    static std::string name(const Element&);
    static std::string description(const Element&);
    static bool has(const Element&, AtspiStateType);
    static Frame frame(const Element&);
    /// False if it has no such action, or is gone.
    static bool perform(const Element&, const std::string& action);
    static bool takeFocus(const Element&);
    /// How many surfaces the program shows.
    std::size_t surfacesOf(const std::string& program) const;

    /// Ends the accessibility service and its bus without a word; the registry goes with the bus.
    void killService();

private:
    struct Event {
        std::string type;
        std::string name; ///< of what it is about
    };

    template <typename Condition> Element first(const std::string& program, Condition) const;
    static void onEvent(AtspiEvent*, void* self);
    GVariant* call(const char* name, const char* path, const char* interface, const char* member,
        GVariant* arguments) const;

    GDBusConnection* m_session;
    AtspiEventListener* m_listener;
    std::vector<Event> m_heard;
};

}
