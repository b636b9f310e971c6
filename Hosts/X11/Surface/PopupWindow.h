#pragma once

#include <string>
#include <vector>

#include "Hosts/X11/Surface/BackBuffer.h"

namespace quorvel::xdg::x11 {

/// A window that no window manager touches, above all others and on every desktop. Where its
/// picture is transparent there is no window for the pointer and, without a compositor, none for
/// the eye either. Pixels of the X screen.
class PopupWindow {
public:
    /// What compositors and window managers are told that it is.
    enum class Kind { tooltip, menu };

    PopupWindow(Connection&, const std::string& title, Kind, bool isComposited);
    ~PopupWindow();
    PopupWindow(const PopupWindow&) = delete;
    PopupWindow& operator=(const PopupWindow&) = delete;

    xcb_window_t id() const { return m_window; }
    /// True if the picture must be painted anew.
    bool setFrame(const Rect&);
    bool setComposited(bool);
    /// What is to be painted on; null for lack of memory.
    cairo_surface_t* picture() const { return m_picture ? m_picture.get() : m_buffer.surface(); }
    /// Shows these parts of the picture; the window comes up with the first ones.
    void present(const std::vector<Rect>& parts);
    void raise();
    /// Only a compositor does anything about it.
    void setOpacity(double);
    void expose(const Rect& part) { m_buffer.copyTo(m_window, part); }

private:
    void create(const std::string& title, Kind);
    void makePicture();
    bool reachesEdge(const Rect& part) const;
    void shape();

    Connection& m_connection;
    const WindowVisual m_visual;
    bool m_keepsAlpha; ///< a compositor shows what is transparent
    BackBuffer m_buffer;
    CairoSurface m_picture; ///< what is shown without its transparency; null where that is kept
    const xcb_window_t m_window;
    Rect m_frame;
    std::vector<xcb_rectangle_t> m_shape;
    bool m_hasShape = false;
    bool m_isMapped = false;
};

}
