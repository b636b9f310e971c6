#include "Hosts/Linux/Accessible/AccessibleObject.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "Hosts/Linux/Accessible/AccessibleNode.h"
#include "Hosts/Linux/Accessible/AccessibleTextObject.h"
#include "Hosts/Linux/Text.h"

namespace quorvel::xdg {

namespace {

struct AccessibleObject {
    AtkObject base;
    AccessibleNode* node; ///< null once what it stood for is gone
};

}

AccessibleNode* accessibleNodeOf(gpointer object)
{
    return static_cast<AccessibleObject*>(object)->node;
}

Point accessibleOrigin(const AccessibleNode& node, AtkCoordType coordinates)
{
    std::optional<Rect> frame;
    if (coordinates == ATK_XY_WINDOW)
        frame = node.surfaceFrame();
    else if (coordinates == ATK_XY_PARENT && node.parent())
        frame = node.parent()->frame();
    return frame ? frame->origin() : Point{};
}

namespace {

// MARK: Every object

const char* nameOf(AtkObject* object)
{
    auto* node = accessibleNodeOf(object);
    return node ? node->name() : "";
}

const char* descriptionOf(AtkObject* object)
{
    auto* node = accessibleNodeOf(object);
    return node ? node->text() : "";
}

AtkObject* parentOf(AtkObject* object)
{
    auto* node = accessibleNodeOf(object);
    return node && node->parent() ? node->parent()->object() : nullptr;
}

int childCountOf(AtkObject* object)
{
    auto* node = accessibleNodeOf(object);
    return node ? static_cast<int>(node->children().size()) : 0;
}

AtkObject* refChildOf(AtkObject* object, int index)
{
    auto* node = accessibleNodeOf(object);
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
    auto* node = accessibleNodeOf(object);
    return node ? node->indexInParent() : -1;
}

AtkRole roleOf(AtkObject* object)
{
    auto* node = accessibleNodeOf(object);
    return node ? node->role() : ATK_ROLE_INVALID;
}

/// The library is not at hand where the node is gone; it is loaded, or there were no object.
AtkStateSet* refStatesOf(AtkObject* object)
{
    auto& atk = *AtkLibrary::load();
    auto* set = atk.newStateSet();
    auto* node = accessibleNodeOf(object);
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

void addAttribute(AtkAttributeSet*& all, const char* name, const std::string& value)
{
    auto* attribute = g_new(AtkAttribute, 1);
    attribute->name = g_strdup(name);
    attribute->value = g_strdup(value.c_str());
    all = g_slist_prepend(all, attribute);
}

/// Names that readers know: "3 of 40", and what an empty field asks for.
AtkAttributeSet* attributesOf(AtkObject* object)
{
    AtkAttributeSet* all = nullptr;
    auto* node = accessibleNodeOf(object);
    if (!node)
        return all;
    if (const auto position = node->position()) {
        addAttribute(all, "posinset", std::to_string(position->index + 1));
        addAttribute(all, "setsize", std::to_string(position->count));
    }
    if (const auto field = node->field(); field && !field->placeholder.empty())
        addAttribute(all, "placeholder-text", validUtf8(field->placeholder));
    return all;
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
    object->get_attributes = attributesOf;
}

// MARK: What has a place

void extentsOf(
    AtkComponent* component, int* x, int* y, int* width, int* height, AtkCoordType coordinates)
{
    auto* node = accessibleNodeOf(component);
    const auto found = node ? node->frame() : std::nullopt;
    const auto frame = found.value_or(Rect{});
    const auto origin = found ? accessibleOrigin(*node, coordinates) : Point{};
    *x = static_cast<int>(std::lround(frame.x - origin.x));
    *y = static_cast<int>(std::lround(frame.y - origin.y));
    *width = static_cast<int>(std::lround(frame.width));
    *height = static_cast<int>(std::lround(frame.height));
}

gboolean grabFocus(AtkComponent* component)
{
    auto* node = accessibleNodeOf(component);
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
    auto* node = accessibleNodeOf(action);
    return node ? static_cast<int>(node->actionCount()) : 0;
}

const char* actionNameOf(AtkAction* action, int index)
{
    auto* node = accessibleNodeOf(action);
    return node && index >= 0 ? node->actionName(static_cast<std::size_t>(index)) : nullptr;
}

gboolean doAction(AtkAction* action, int index)
{
    auto* node = accessibleNodeOf(action);
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

// MARK: What can be selected

std::vector<AccessibleNode*> selectedIn(AtkSelection* selection)
{
    std::vector<AccessibleNode*> selected;
    if (auto* node = accessibleNodeOf(selection)) {
        for (auto& child : node->children()) {
            if (child->isSelected())
                selected.push_back(child.get());
        }
    }
    return selected;
}

int selectionCountOf(AtkSelection* selection)
{
    return static_cast<int>(selectedIn(selection).size());
}

AtkObject* refSelectionOf(AtkSelection* selection, int index)
{
    const auto selected = selectedIn(selection);
    if (index < 0 || static_cast<std::size_t>(index) >= selected.size())
        return nullptr;
    return static_cast<AtkObject*>(
        g_object_ref(selected[static_cast<std::size_t>(index)]->object()));
}

gboolean isChildSelected(AtkSelection* selection, int index)
{
    return std::ranges::any_of(
        selectedIn(selection), [index](auto* child) { return child->indexInParent() == index; });
}

void initializeSelection(gpointer interface, gpointer)
{
    auto* selection = static_cast<AtkSelectionIface*>(interface);
    selection->get_selection_count = selectionCountOf;
    selection->ref_selection = refSelectionOf;
    selection->is_child_selected = isChildSelected;
}

// MARK: Types

const char* typeNameOf(AccessibleKind kind)
{
    switch (kind) {
    case AccessibleKind::application:
        return "QuorvelAccessibleApplication";
    case AccessibleKind::surface:
        return "QuorvelAccessibleSurface";
    case AccessibleKind::list:
        return "QuorvelAccessibleList";
    case AccessibleKind::textField:
        return "QuorvelAccessibleTextField";
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
    if (kind == AccessibleKind::surface) {
        addInterface(type, atk.windowType(), nullptr); // to say that it has the keyboard
        return type;
    }
    addInterface(type, atk.actionType(), initializeAction);
    if (kind == AccessibleKind::list)
        addInterface(type, atk.selectionType(), initializeSelection);
    if (kind == AccessibleKind::textField) {
        addInterface(type, atk.textType(), initializeAccessibleText);
        addInterface(type, atk.editableTextType(), initializeAccessibleEditableText);
    }
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
