#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "Hosts/X11/Surface/BackBuffer.h"
#include "Hosts/X11/Surface/MenuLayout.h"
#include "Hosts/X11/Surface/PaintSource.h"
#include "Hosts/X11/Surface/SurfaceContext.h"

namespace quorvel::xdg::x11 {

/// What one menu or submenu shows, and which of its rows is lit. Places are pixels of the X screen.
class MenuWindow {
public:
    using Place = std::function<Rect(Size pixels)>;

    /// The menu outlives the window.
    MenuWindow(const SurfaceContext&, const Menu&, const Place&);
    ~MenuWindow();
    MenuWindow(const MenuWindow&) = delete;
    MenuWindow& operator=(const MenuWindow&) = delete;

    xcb_window_t id() const { return m_window; }
    const Rect& frame() const { return m_frame; }
    const MenuItem& item(std::size_t row) const { return m_menu[row]; }
    std::optional<std::size_t> rowAt(Point) const;
    std::optional<std::size_t> rowBeside(std::optional<std::size_t> row, int step) const;
    Rect rowFrame(std::size_t row) const;
    std::optional<std::size_t> highlighted() const { return m_highlighted; }
    void highlight(std::optional<std::size_t> row);
    /// Scrolls until the row is seen whole.
    void reveal(std::size_t row);
    /// In points; nothing happens where all rows are seen, or the end is.
    void scroll(double distance);
    /// -1 over the strip that says there is more above, 1 over that below, 0 elsewhere.
    int stripAt(Point) const;
    void expose(const Rect& part) { m_buffer.copyTo(m_window, part); }
    void addEntries(std::vector<MenuEntry>&) const;

private:
    void createWindow();
    bool hasMore(int side) const;
    Rect strip(int side) const;
    void paint();
    void paintRow(Canvas&, std::size_t row) const;
    void paintStrip(Canvas&, int side) const;

    SurfaceContext m_context;
    const Menu& m_menu;
    const double m_scale;
    const MenuLayout m_layout;
    const Rect m_frame;
    PaintSource m_paint;
    BackBuffer m_buffer;
    const xcb_window_t m_window;
    std::optional<std::size_t> m_highlighted;
    double m_offset = 0; ///< points of the rows that lie above what is seen
};

}
