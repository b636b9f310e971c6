#include "Hosts/X11/Surface/X11Panel.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Hosts/Linux/Accessible/AccessibleSurfaces.h"
#include "Hosts/X11/Surface/DisplayWindow.h"

namespace quorvel::xdg::x11 {

X11Panel::X11Panel(DisplayWindow& window, const PanelOptions& options, SurfaceClient& client)
    : m_window(window)
    , m_options(options)
    , m_client(client)
    , m_grab(window.context().grabs, *this, client)
{
    m_window.add(*this);
    m_accessible = m_window.context().accessible.add(*this, m_client);
}

X11Panel::~X11Panel()
{
    m_window.remove(*this);
}

void X11Panel::setFrame(const Rect& frame)
{
    if (frame == m_frame)
        return;
    bool isResized = frame.size() != m_frame.size();
    m_frame = frame;
    m_window.update();
    if (isResized)
        m_client.surfaceDidResize(frame.size());
}

void X11Panel::setSlide(double share)
{
    m_slide = share;
    m_window.update();
}

void X11Panel::orderFront()
{
    m_isOrderedIn = true;
    m_window.update();
    accessibleTreeDidChange();
}

void X11Panel::orderOut()
{
    m_isOrderedIn = false;
    m_window.update();
    accessibleTreeDidChange();
}

void X11Panel::makeKeyAndOrderFront()
{
    orderFront();
    if (m_canBecomeKey)
        m_window.requestSpace(m_options.space);
}

bool X11Panel::isVisible() const
{
    return m_isOrderedIn && m_window.isCurrent(*this);
}

double X11Panel::scale() const
{
    return m_window.scale();
}

void X11Panel::invalidate(const Rect& rect)
{
    m_window.invalidate(*this, rect);
}

bool X11Panel::setBlursBehind(const std::optional<VisualEffect>& effect)
{
    auto blur = m_window.canBlur() ? effect : std::nullopt;
    if (std::exchange(m_blur, blur) != blur)
        invalidate(Rect::from({}, m_frame.size()));
    m_window.update();
    return m_window.canBlur();
}

/// Compositors blur what is behind and no more; without a tint, text over a bright picture could
/// not be read in a dark bar, nor over a dark one in a light bar.
Color X11Panel::ground() const
{
    bool isDark = m_window.context().appearance.value().isDark;
    auto tint = isDark ? Color::grey(0.13, 0.72) : Color::grey(0.95, 0.74);
    return tint.withAlpha(m_blur ? tint.alpha * m_blur->opacity : 0);
}

Duration X11Panel::frameInterval() const
{
    return m_window.frameInterval();
}

bool X11Panel::takeKeyboard()
{
    return !m_window.isCovered() && m_window.shows(*this) && m_grab.takeKeyboard();
}

void X11Panel::accessibleTreeDidChange()
{
    m_window.context().accessible.changed.emit();
}

Rect X11Panel::framePixels() const
{
    return m_window.context().toPixels(m_frame);
}

Rect X11Panel::seenPixels() const
{
    auto frame = framePixels();
    if (m_slide >= 1 || frame.isEmpty())
        return {};
    double gone = std::min(std::round(frame.height * m_slide), frame.height - 1);
    return {frame.x, frame.y + gone, frame.width, frame.height - gone};
}

}
