#include "Hosts/Linux/Accessible/AtkLibrary.h"

#include <optional>

#include "Hosts/Linux/LibrarySymbols.h"

namespace quorvel::xdg {

namespace {

std::optional<AtkLibrary> loadLibrary()
{
    // The bridge links ATK, so one search finds the functions of both.
    LibrarySymbols symbols{"libatk-bridge-2.0.so.0"};
    AtkLibrary atk{};
    symbols.find("atk_object_get_type", atk.objectType);
    symbols.find("atk_component_get_type", atk.componentType);
    symbols.find("atk_action_get_type", atk.actionType);
    symbols.find("atk_window_get_type", atk.windowType);
    symbols.find("atk_selection_get_type", atk.selectionType);
    symbols.find("atk_text_get_type", atk.textType);
    symbols.find("atk_editable_text_get_type", atk.editableTextType);
    symbols.find("atk_util_get_type", atk.utilType);
    symbols.find("atk_state_set_new", atk.newStateSet);
    symbols.find("atk_state_set_add_state", atk.addState);
    symbols.find("atk_object_notify_state_change", atk.notifyStateChange);
    symbols.find("atk_bridge_adaptor_init", atk.startBridge);
    symbols.find("atk_bridge_adaptor_cleanup", atk.endBridge);
    return symbols.areComplete() ? std::optional{atk} : std::nullopt;
}

}

const AtkLibrary* AtkLibrary::load()
{
    static const auto library = loadLibrary();
    return library ? &*library : nullptr;
}

}
