#include "Settings/Toolkit/KeyboardLayout.h"

#include <algorithm>
#include <memory>
#include <utility>

#ifdef GDK_WINDOWING_X11
#include <X11/XKBlib.h>
#include <gdk/x11/gdkx.h>
#endif

#include "Hosts/Linux/GHandles.h"

namespace quorvel::settings {

namespace {

/// 0 where the system does not say.
int groupInUse(GdkDisplay* display)
{
#ifdef GDK_WINDOWING_X11
    XkbStateRec state{};
    if (GDK_IS_X11_DISPLAY(display)
        && XkbGetState(gdk_x11_display_get_xdisplay(display), XkbUseCoreKbd, &state) == Success)
        return state.group;
#endif
    return 0;
}

/// A key that has fewer layouts than the keyboard repeats them from the first.
gunichar characterIn(int group, const GdkKeymapKey* keys, const guint* symbols, int count)
{
    int groups = 0;
    for (int index = 0; index < count; ++index)
        groups = std::max(groups, keys[index].group + 1);
    for (int index = 0; index < count; ++index) {
        if (keys[index].level == 0 && keys[index].group == group % groups)
            return gdk_keyval_to_unicode(symbols[index]);
    }
    return 0;
}

}

KeyboardLayout::KeyboardLayout(GdkDisplay* display, std::function<void()> onChange)
    : m_display(display)
    , m_onChange(std::move(onChange))
    , m_group(groupInUse(display))
{
#ifdef GDK_WINDOWING_X11
    if (!GDK_IS_X11_DISPLAY(display))
        return;
    int firstEvent = 0;
    XkbQueryExtension(
        gdk_x11_display_get_xdisplay(display), nullptr, &firstEvent, nullptr, nullptr, nullptr);
    const auto hear = [this, firstEvent](SignalArguments arguments) {
        const auto* event = static_cast<const XEvent*>(g_value_get_pointer(&arguments[1]));
        const auto* keyboard = reinterpret_cast<const XkbEvent*>(event);
        if (event->type == MappingNotify) {
            tellLater();
        } else if (event->type == firstEvent) {
            const bool isState = keyboard->any.xkb_type == XkbStateNotify;
            const int group = isState ? keyboard->state.group : groupInUse(m_display);
            if (std::exchange(m_group, group) != group || !isState)
                tellLater();
        }
        return false; // GDK has its own use for it
    };
    m_event = SignalHandler::answered(display, "xevent", hear);
#endif
}

KeyboardLayout::~KeyboardLayout()
{
    g_clear_handle_id(&m_telling, g_source_remove);
}

/// GDK hears of a change after us.
void KeyboardLayout::tellLater()
{
    if (m_telling != 0)
        return;
    const GSourceFunc tell = [](gpointer self) -> gboolean {
        auto& layout = *static_cast<KeyboardLayout*>(self);
        layout.m_telling = 0;
        layout.m_onChange();
        return G_SOURCE_REMOVE;
    };
    m_telling = g_idle_add(tell, this);
}

std::string KeyboardLayout::characterOf(guint hardwareCode) const
{
    GdkKeymapKey* keys = nullptr;
    guint* symbols = nullptr;
    int count = 0;
    if (!gdk_display_map_keycode(m_display, hardwareCode, &keys, &symbols, &count))
        return {};
    const std::unique_ptr<GdkKeymapKey, xdg::FreeWith<g_free>> ownedKeys{keys};
    const std::unique_ptr<guint, xdg::FreeWith<g_free>> ownedSymbols{symbols};
    const auto character = characterIn(m_group, keys, symbols, count);
    char text[6];
    const auto length = character == 0 ? 0 : g_unichar_to_utf8(character, text);
    return {text, static_cast<std::size_t>(length)};
}

}
