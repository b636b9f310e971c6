#include "Settings/Rows/ItemRow.h"

#include <utility>

#include <gio/gdesktopappinfo.h>

#include "Quorvel/Platform/Translation.h"
#include "Settings/Rows/ActionRow.h"

namespace quorvel::settings {

namespace {

// Pixels at scale 1.
constexpr int kIconSize = 32;
constexpr int kHotspot = 12;
constexpr int kLongestDragged = 40; // characters

xdg::GObjectHandle<GIcon> iconOf(const std::string& desktopFile)
{
    const xdg::GObjectHandle<GDesktopAppInfo> entry{
        desktopFile.empty() ? nullptr : g_desktop_app_info_new_from_filename(desktopFile.c_str())};
    auto* icon = entry ? g_app_info_get_icon(G_APP_INFO(entry.get())) : nullptr;
    return xdg::GObjectHandle<GIcon>{icon ? static_cast<GIcon*>(g_object_ref(icon)) : nullptr};
}

void describe(GtkWidget* button, const std::string& what)
{
    gtk_widget_set_tooltip_text(button, what.c_str());
    setAccessibleName(button, what);
}

}

ItemRow::ItemRow(Actions actions)
    : m_actions(std::move(actions))
    , m_row(GTK_WIDGET(g_object_ref_sink(adw_action_row_new())))
    , m_grip(gtk_image_new_from_icon_name("list-drag-handle-symbolic"))
    , m_icon(gtk_image_new())
    , m_dragSource(gtk_drag_source_new())
{
    adw_preferences_row_set_use_markup(ADW_PREFERENCES_ROW(m_row.get()), false);
    adw_action_row_set_title_lines(ADW_ACTION_ROW(m_row.get()), 2);
    gtk_image_set_pixel_size(GTK_IMAGE(m_icon), kIconSize);
    showIcon({});
    adw_action_row_add_prefix(ADW_ACTION_ROW(m_row.get()), m_icon);
    addGrip();
    m_up = addButton("go-up-symbolic");
    m_down = addButton("go-down-symbolic");
    m_remove = addButton("list-remove-symbolic");
    m_handlers.emplace_back(m_up, "clicked", [this] { m_actions.move(Step::up); });
    m_handlers.emplace_back(m_down, "clicked", [this] { m_actions.move(Step::down); });
    m_handlers.emplace_back(m_remove, "clicked", [this] { m_actions.remove(); });
    auto* keys = gtk_event_controller_key_new();
    gtk_widget_add_controller(m_row.get(), keys);
    m_handlers.push_back(
        SignalHandler::answered(keys, "key-pressed", [this](SignalArguments arguments) {
            return keyPressed(g_value_get_uint(&arguments[1]),
                static_cast<GdkModifierType>(g_value_get_flags(&arguments[3])));
        }));
}

ItemRow::~ItemRow()
{
    gtk_drag_source_set_content(m_dragSource, nullptr); // the content holds the row, which holds it
}

void ItemRow::addGrip()
{
    gtk_widget_add_css_class(m_grip, "dim-label");
    adw_action_row_add_prefix(ADW_ACTION_ROW(m_row.get()), m_grip);
    gtk_drag_source_set_actions(m_dragSource, GDK_ACTION_MOVE);
    const xdg::GObjectHandle<GdkContentProvider> content{
        gdk_content_provider_new_typed(ADW_TYPE_ACTION_ROW, m_row.get())};
    gtk_drag_source_set_content(m_dragSource, content.get());
    gtk_widget_add_controller(m_row.get(), GTK_EVENT_CONTROLLER(m_dragSource));
    m_handlers.emplace_back(m_dragSource, "drag-begin", [this](SignalArguments arguments) {
        auto* drag = static_cast<GdkDrag*>(g_value_get_object(&arguments[1]));
        gtk_drag_icon_set_child(GTK_DRAG_ICON(gtk_drag_icon_get_for_drag(drag)), makeDragIcon());
        gdk_drag_set_hotspot(drag, kHotspot, kHotspot);
    });
}

/// What hangs on the pointer; opaque, since not every desktop can see through it.
GtkWidget* ItemRow::makeDragIcon() const
{
    auto* icon = gtk_image_new_from_gicon(gtk_image_get_gicon(GTK_IMAGE(m_icon)));
    gtk_image_set_pixel_size(GTK_IMAGE(icon), kIconSize);
    auto* title = gtk_label_new(m_title.c_str());
    gtk_label_set_ellipsize(GTK_LABEL(title), PANGO_ELLIPSIZE_END);
    gtk_label_set_max_width_chars(GTK_LABEL(title), kLongestDragged);
    auto* box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, kHotspot);
    gtk_widget_add_css_class(box, "quorvel-dragged");
    gtk_box_append(GTK_BOX(box), icon);
    gtk_box_append(GTK_BOX(box), title);
    return box;
}

GtkWidget* ItemRow::addButton(const char* icon)
{
    auto* button = gtk_button_new_from_icon_name(icon);
    gtk_widget_set_valign(button, GTK_ALIGN_CENTER);
    gtk_widget_add_css_class(button, "flat");
    adw_action_row_add_suffix(ADW_ACTION_ROW(m_row.get()), button);
    return button;
}

void ItemRow::show(const SettingsList::Item& item, const Abilities& abilities)
{
    showTitle(item.title);
    showIcon(item.icon);
    // A button that becomes insensitive drops the keyboard's focus: its neighbour takes it.
    if (!abilities.canMoveUp && abilities.canMoveDown && gtk_widget_has_focus(m_up)) {
        gtk_widget_set_sensitive(m_down, true);
        gtk_widget_grab_focus(m_down);
    } else if (!abilities.canMoveDown && abilities.canMoveUp && gtk_widget_has_focus(m_down)) {
        gtk_widget_set_sensitive(m_up, true);
        gtk_widget_grab_focus(m_up);
    }
    m_abilities = abilities;
    gtk_widget_set_visible(m_grip, abilities.canBeDragged);
    gtk_widget_set_visible(m_up, abilities.canBeDragged);
    gtk_widget_set_visible(m_down, abilities.canBeDragged);
    gtk_widget_set_visible(m_remove, abilities.canBeRemoved);
    gtk_widget_set_sensitive(m_up, abilities.canMoveUp);
    gtk_widget_set_sensitive(m_down, abilities.canMoveDown);
}

void ItemRow::showTitle(const std::string& title)
{
    if (title == m_title)
        return;
    m_title = title;
    adw_preferences_row_set_title(ADW_PREFERENCES_ROW(m_row.get()), title.c_str());
    describe(m_up, trFormat("Move {} up", title));
    describe(m_down, trFormat("Move {} down", title));
    describe(m_remove, trFormat("Remove {}", title));
}

void ItemRow::showIcon(const std::string& source)
{
    if (source == m_iconSource && gtk_image_get_gicon(GTK_IMAGE(m_icon)))
        return;
    m_iconSource = source;
    auto icon = iconOf(source);
    if (!icon)
        icon.reset(g_themed_icon_new("application-x-executable"));
    gtk_image_set_from_gicon(GTK_IMAGE(m_icon), icon.get());
}

bool ItemRow::keyPressed(guint symbol, GdkModifierType modifiers)
{
    const auto pressed = modifiers & gtk_accelerator_get_default_mod_mask();
    if (pressed == GDK_ALT_MASK && symbol == GDK_KEY_Up && m_abilities.canMoveUp)
        m_actions.move(Step::up);
    else if (pressed == GDK_ALT_MASK && symbol == GDK_KEY_Down && m_abilities.canMoveDown)
        m_actions.move(Step::down);
    else if (pressed == 0 && symbol == GDK_KEY_Delete && m_abilities.canBeRemoved)
        m_actions.remove();
    else
        return false;
    return true;
}

}
