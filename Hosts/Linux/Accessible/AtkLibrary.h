#pragma once

#include <atk/atk.h>

namespace quorvel::xdg {

/// The calls of ATK and of its bridge to the accessibility bus. Both are loaded when the first
/// assistive program appears: with their dependencies they are larger than the bar.
struct AtkLibrary {
    /// Null where they are not installed. They stay loaded, since GObject cannot forget a type.
    static const AtkLibrary* load();

    decltype(&::atk_object_get_type) objectType;
    decltype(&::atk_component_get_type) componentType;
    decltype(&::atk_action_get_type) actionType;
    decltype(&::atk_window_get_type) windowType;
    decltype(&::atk_selection_get_type) selectionType;
    decltype(&::atk_text_get_type) textType;
    decltype(&::atk_editable_text_get_type) editableTextType;
    decltype(&::atk_util_get_type) utilType;
    decltype(&::atk_state_set_new) newStateSet;
    decltype(&::atk_state_set_add_state) addState;
    decltype(&::atk_object_notify_state_change) notifyStateChange;
    int (*startBridge)(int* argumentCount, char*** arguments);
    void (*endBridge)();
};

}
