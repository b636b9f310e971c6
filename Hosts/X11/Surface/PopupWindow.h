#pragma once

#include <string>
#include <vector>

#include "Hosts/X11/Surface/BackBuffer.h"
#include "Hosts/X11/Surface/Backdrop.h"

namespace quorvel::xdg::x11 {

/// A window that window managers leave alone, above all others and on every desktop. Where its
/// picture is transparent, the window does not receive the pointer and, without a compositor, is
/// not visible either; its edges are then mixed with what is seen beside them. Pixels of the X
/// screen.
class PopupWindow {
public:
    /// The window type that compositors and window managers are told.
    enum class Kind { tooltip, menu };

    PopupWindow(Connection&, const std::string& title, Kind, bool isComposited);
    ~PopupWindow();
    PopupWindow(const PopupWindow&) = delete;
    PopupWindow& operator=(const PopupWindow&) = delete;

    xcb_window_t id() const { return m_window; }
    /// True if the picture must be repainted.
    bool setFrame(const Rect&);
    bool setComposited(bool);
    /// None: the one of the root.
    void setCursor(xcb_cursor_t);
    /// The surface to paint on; null for lack of memory.
    cairo_surface_t* picture() const { return m_picture ? m_picture.get() : m_buffer.surface(); }
    /// Shows these parts of the picture; the window comes up with the first ones.
    void present(const std::vector<Rect>& parts);
    void raise();
    /// What lies beside its edges may have changed. True: it should be asked again now and then.
    bool followBackdrop();
    /// Has an effect only with a compositor.
    void setOpacity(double);
    void expose(const Rect& part) { m_buffer.copyTo(m_window, part); }

private:
    void create(const std::string& title, Kind);
    void makePicture();
    bool reachesEdge(const Rect& part) const;
    void shape();
    void applyShape();
    void flattenParts(const std::vector<Rect>&);

    Connection& m_connection;
    const WindowVisual m_visual;
    bool m_keepsAlpha; ///< a compositor shows transparency
    BackBuffer m_buffer;
    Backdrop m_backdrop; ///< of a picture without transparency
    CairoSurface m_picture; ///< what is shown, without transparency; null where that is kept
    const xcb_window_t m_window;
    Rect m_frame;
    std::vector<xcb_rectangle_t> m_shape;
    bool m_hasShape = false;
    bool m_isMapped = false;
};

}
