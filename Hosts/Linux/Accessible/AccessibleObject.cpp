#include "Hosts/Linux/Accessible/AccessibleObject.h"

#include <cmath>

#include "Hosts/Linux/Accessible/AccessibleNode.h"

namespace quorvel::xdg {

namespace {

struct AccessibleObject {
    AtkObject base;
    AccessibleNode* node; ///< null once what it stood for is gone
};

/// Null: it is gone.
AccessibleNode* nodeOf(gpointer object)
{
    return static_cast<AccessibleObject*>(object)->node;
}

// MARK: Every object

const char* nameOf(AtkObject* object)
{
    auto* node = nodeOf(object);
    return node ? node->name() : "";
}

const char* descriptionOf(AtkObject* object)
{
    auto* node = nodeOf(object);
    return node ? node->text() : "";
}

AtkObject* parentOf(AtkObject* object)
{
    auto* node = nodeOf(object);
    return node && node->parent() ? node->parent()->object() : nullptr;
}

int childCountOf(AtkObject* object)
{
    auto* node = nodeOf(object);
    return node ? static_cast<int>(node->children().size()) : 0;
}

AtkObject* refChildOf(AtkObject* object, int index)
{
    auto* node = nodeOf(object);
    if (!node || index < 0)
        return nullptr;
    auto& children = node->children();
    if (static_cast<std::size_t>(index) >= children.size())
        return nullptr;
    return static_cast<AtkObject*>(
        g_object_ref(children[static_cast<std::size_t>(index)]->object()));
}

int indexInParentOf(AtkObject* object)
{
    auto* node = nodeOf(object);
    return node ? node->indexInParent() : -1;
}

AtkRole roleOf(AtkObject* object)
{
    auto* node = nodeOf(object);
    return node ? node->role() : ATK_ROLE_INVALID;
}

/// The library is not at hand where the node is gone; it is loaded, or there were no object.
AtkStateSet* refStatesOf(AtkObject* object)
{
    auto& atk = *AtkLibrary::load();
    auto* set = atk.newStateSet();
    auto* node = nodeOf(object);
    if (!node) {
        atk.addState(set, ATK_STATE_DEFUNCT);
        return set;
    }
    const auto description = node->describe();
    for (int state = 0; state < ATK_STATE_LAST_DEFINED; ++state) {
        if (description.has(static_cast<AtkStateType>(state)))
            atk.addState(set, static_cast<AtkStateType>(state));
    }
    return set;
}

void initializeClass(gpointer instanceClass, gpointer)
{
    auto* object = static_cast<AtkObjectClass*>(instanceClass);
    object->get_name = nameOf;
    object->get_description = descriptionOf;
    object->get_parent = parentOf;
    object->get_n_children = childCountOf;
    object->ref_child = refChildOf;
    object->get_index_in_parent = indexInParentOf;
    object->get_role = roleOf;
    object->ref_state_set = refStatesOf;
}

// MARK: What has a place

Point originFor(const AccessibleNode& node, AtkCoordType coordinates)
{
    std::optional<Rect> frame;
    if (coordinates == ATK_XY_WINDOW)
        frame = node.surfaceFrame();
    else if (coordinates == ATK_XY_PARENT && node.parent())
        frame = node.parent()->frame();
    return frame ? frame->origin() : Point{};
}

void extentsOf(
    AtkComponent* component, int* x, int* y, int* width, int* height, AtkCoordType coordinates)
{
    auto* node = nodeOf(component);
    const auto found = node ? node->frame() : std::nullopt;
    const auto frame = found.value_or(Rect{});
    const auto origin = found ? originFor(*node, coordinates) : Point{};
    *x = static_cast<int>(std::lround(frame.x - origin.x));
    *y = static_cast<int>(std::lround(frame.y - origin.y));
    *width = static_cast<int>(std::lround(frame.width));
    *height = static_cast<int>(std::lround(frame.height));
}

gboolean grabFocus(AtkComponent* component)
{
    auto* node = nodeOf(component);
    return node && node->takeFocus();
}

/// What lies at a point and so on, ATK finds out from this.
void initializeComponent(gpointer interface, gpointer)
{
    auto* component = static_cast<AtkComponentIface*>(interface);
    component->get_extents = extentsOf;
    component->grab_focus = grabFocus;
}

// MARK: What can be done

int actionCountOf(AtkAction* action)
{
    auto* node = nodeOf(action);
    return node ? static_cast<int>(node->actionCount()) : 0;
}

const char* actionNameOf(AtkAction* action, int index)
{
    auto* node = nodeOf(action);
    return node && index >= 0 ? node->actionName(static_cast<std::size_t>(index)) : nullptr;
}

gboolean doAction(AtkAction* action, int index)
{
    auto* node = nodeOf(action);
    return node && index >= 0 && node->performAction(static_cast<std::size_t>(index));
}

void initializeAction(gpointer interface, gpointer)
{
    auto* action = static_cast<AtkActionIface*>(interface);
    action->get_n_actions = actionCountOf;
    action->get_name = actionNameOf;
    action->get_localized_name = actionNameOf;
    action->do_action = doAction;
}

// MARK: Types

const char* typeNameOf(AccessibleKind kind)
{
    switch (kind) {
    case AccessibleKind::application:
        return "QuorvelAccessibleApplication";
    case AccessibleKind::surface:
        return "QuorvelAccessibleSurface";
    case AccessibleKind::element:
        break;
    }
    return "QuorvelAccessibleElement";
}

void addInterface(GType type, GType interface, GInterfaceInitFunc initialize)
{
    const GInterfaceInfo info{initialize, nullptr, nullptr};
    g_type_add_interface_static(type, interface, &info);
}

GType registerType(const AtkLibrary& atk, AccessibleKind kind)
{
    GTypeInfo info{};
    info.class_size = sizeof(AtkObjectClass);
    info.class_init = initializeClass;
    info.instance_size = sizeof(AccessibleObject);
    const auto type
        = g_type_register_static(atk.objectType(), typeNameOf(kind), &info, GTypeFlags{});
    if (kind == AccessibleKind::application)
        return type;
    addInterface(type, atk.componentType(), initializeComponent);
    if (kind == AccessibleKind::surface)
        addInterface(type, atk.windowType(), nullptr); // to say that it has the keyboard
    else
        addInterface(type, atk.actionType(), initializeAction);
    return type;
}

GType typeOf(const AtkLibrary& atk, AccessibleKind kind)
{
    const auto known = g_type_from_name(typeNameOf(kind));
    return known ? known : registerType(atk, kind);
}

}

AtkObject* makeAccessibleObject(const AtkLibrary& atk, AccessibleKind kind, AccessibleNode& node)
{
    auto* object = static_cast<AccessibleObject*>(g_object_new(typeOf(atk, kind), nullptr));
    object->node = &node;
    return &object->base;
}

void detachAccessibleObject(AtkObject* object)
{
    reinterpret_cast<AccessibleObject*>(object)->node = nullptr;
}

}
