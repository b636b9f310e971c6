#pragma once

#include <functional>
#include <string>
#include <vector>

#include <adwaita.h>

#include "Hosts/Linux/GHandles.h"
#include "Quorvel/Platform/SettingsDescription.h"
#include "Settings/Toolkit/SignalHandler.h"

namespace quorvel::settings {

/// One thing of a list, with what moves and removes it: buttons, keys, and a grip for the pointer.
class ItemRow {
public:
    enum class Step { up, down };

    struct Actions {
        std::function<void(Step)> move;
        std::function<void()> remove;
    };

    /// What can be done with it where it is now.
    struct Abilities {
        bool canBeDragged = false;
        bool canMoveUp = false;
        bool canMoveDown = false;
        bool canBeRemoved = false;
    };

    explicit ItemRow(Actions);
    ~ItemRow();
    ItemRow(const ItemRow&) = delete;
    ItemRow& operator=(const ItemRow&) = delete;

    GtkWidget* widget() const { return m_row.get(); }
    void show(const SettingsList::Item&, const Abilities&);
    bool hasFocus() const
    {
        return gtk_widget_get_focus_child(widget()) || gtk_widget_has_focus(widget());
    }

private:
    void addGrip();
    GtkWidget* makeDragIcon() const;
    GtkWidget* addButton(const char* icon);
    void showTitle(const std::string&);
    void showIcon(const std::string&);
    bool keyPressed(guint symbol, GdkModifierType);

    Actions m_actions;
    Abilities m_abilities;
    xdg::GObjectHandle<GtkWidget> m_row;
    GtkWidget* m_grip; ///< this and the others are the row's
    GtkWidget* m_icon;
    GtkDragSource* m_dragSource;
    GtkWidget* m_up;
    GtkWidget* m_down;
    GtkWidget* m_remove;
    std::string m_title;
    std::string m_iconSource;
    std::vector<SignalHandler> m_handlers;
};

}
