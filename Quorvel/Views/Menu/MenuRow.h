#pragma once

#include <functional>
#include <string>

#include "Quorvel/Platform/Menu.h"
#include "Quorvel/Views/Kit/Palette.h"
#include "Quorvel/Views/Kit/View.h"
#include "Quorvel/Views/Menu/MenuLayout.h"

namespace quorvel {

/// What all rows of a menu share.
struct MenuLook {
    Palette palette;
    bool isRightToLeft = false;

    static MenuLook of(const Appearance& appearance)
    {
        return {Palette::of(appearance), appearance.isRightToLeft};
    }
};

/// One entry of a menu, or a separator line. All parameters outlive it.
class MenuRow final : public View {
public:
    MenuRow(const MenuItem&, const std::string& keys, std::size_t index, const MenuLayout&,
        const MenuLook&);

    /// An assistive program presses it.
    std::function<void()> onChosen;

    void setHighlighted(bool);

    bool isAccessible() const override { return true; }
    std::string accessibleID() const override { return std::to_string(m_index); }
    AccessibleState accessibleState() const override;
    bool performAccessibleAction(std::size_t) override;

private:
    void paint(Canvas&) const override;

    const MenuItem& m_item;
    const std::string& m_keys;
    const std::size_t m_index;
    const MenuLayout& m_layout;
    const MenuLook& m_look;
    bool m_isHighlighted = false;
};

}
