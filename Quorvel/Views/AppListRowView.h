#pragma once

#include <string>

#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

struct Palette;

/// The icon and the name of an application.
class AppListRowView final : public View {
public:
    /// The palette outlives it; whoever changes it has all of it painted anew.
    explicit AppListRowView(const Palette& palette) : m_palette(palette) { }

    void setName(const std::string&);
    void setIcon(Image);
    /// It lies on the fill of what is selected.
    void setHighlighted(bool);
    void setRightToLeft(bool);

private:
    void paint(Canvas&) const override;

    const Palette& m_palette;
    std::string m_name;
    Image m_icon;
    bool m_isHighlighted = false;
    bool m_isRightToLeft = false;
};

/// The title of a section.
class AppListHeaderView final : public View {
public:
    explicit AppListHeaderView(const Palette& palette) : m_palette(palette) { }

    void setTitle(const std::string&);

private:
    void paint(Canvas&) const override;

    const Palette& m_palette;
    std::string m_title;
};

/// The line below a section.
class AppListDividerView final : public View {
public:
    explicit AppListDividerView(const Palette& palette) : m_palette(palette) { }

private:
    void paint(Canvas&) const override;

    const Palette& m_palette;
};

}
