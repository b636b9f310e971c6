#include "Quorvel/Views/WindowPeek.h"

#include <algorithm>

#include "Quorvel/Core/ThumbnailFollower.h"
#include "Quorvel/Platform/Translation.h"

namespace quorvel {

namespace {

struct WindowPeekStyle {
    static constexpr Color shade{0, 0, 0, 0.55};
    static constexpr Color edge{0, 0, 0, 0.6};
    static constexpr Duration fade = seconds(0.12);
};

}

class WindowPeek::Content final : public View {
public:
    /// In the panel.
    void setPicture(const WindowPicture& picture, const Rect& place, bool hasShade)
    {
        m_picture = picture;
        bool isElsewhere = place != m_place || hasShade != m_hasShade;
        m_place = place;
        m_hasShade = hasShade;
        isElsewhere ? invalidate() : invalidate(m_place);
    }

private:
    void paint(Canvas& canvas) const override
    {
        if (m_hasShade)
            canvas.fill(bounds(), WindowPeekStyle::shade);
        canvas.drawImage(m_picture.image, m_place);
        canvas.strokeRounded(m_place, 0, 1, WindowPeekStyle::edge);
    }

    WindowPicture m_picture;
    Rect m_place;
    bool m_hasShade = false;
};

WindowPeek::WindowPeek(const Inputs& inputs) : m_inputs(inputs), m_fade(inputs.dispatch)
{
}

WindowPeek::~WindowPeek()
{
    end();
}

void WindowPeek::begin(WindowID id, double bottom)
{
    end();
    m_bottom = bottom;
    // The first picture comes after the time that it takes to settle.
    m_rest = m_inputs.dispatch.main().after(kRest - ThumbnailFollower::kSettleTime, [this, id] {
        m_following = m_inputs.thumbnailService.follow({id}, PictureSize::window,
            [this](WindowID, const WindowPicture& picture, const Rect& frame) {
                show(picture, frame);
            });
    });
}

void WindowPeek::end()
{
    m_rest = {};
    m_following = {};
    m_fade.stop();
    if (m_hostingView)
        m_hostingView->setContent(nullptr);
    m_content = nullptr;
    m_surface.reset();
    m_hostingView.reset();
}

Screen WindowPeek::screenOf(const Rect& window) const
{
    auto screens = m_inputs.displays.screens();
    auto found = std::ranges::find_if(
        screens, [&](auto& screen) { return screen.frame.contains(window.centre()); });
    if (found == screens.end())
        found = std::ranges::find(screens, std::optional{m_inputs.display}, &Screen::number);
    return found == screens.end() ? Screen{} : *found;
}

void WindowPeek::show(const WindowPicture& picture, const Rect& frame)
{
    auto screens = m_inputs.displays.screens();
    if (screens.empty() || picture.size.isEmpty() || frame.isEmpty())
        return;
    auto window = frame.flipped(screens.front().frame.height);
    auto screen = screenOf(window);
    auto room = screen.frame;
    if (screen.number == m_inputs.display) {
        room.height = room.maxY() - m_bottom;
        room.y = m_bottom;
    }
    bool hasShade = m_inputs.surfaces.showsTransparency();
    auto panel = hasShade ? room : window.intersected(room);
    if (panel.isEmpty())
        return;
    if (!m_surface)
        makePanel(screen);
    m_surface->setFrame(panel);
    m_content->setPicture(picture,
        {window.x - panel.x, panel.maxY() - window.maxY(), window.width, window.height}, hasShade);
    if (m_surface->isVisible())
        return;
    m_surface->orderFront();
    if (onShown)
        onShown();
}

void WindowPeek::makePanel(const Screen& screen)
{
    m_hostingView = std::make_unique<BarHostingView>();
    m_surface = m_inputs.surfaces.createPanel({.display = screen.number.value_or(m_inputs.display),
                                                  .title = tr("Window"),
                                                  .kind = PanelKind::popup},
        *m_hostingView);
    m_hostingView->attach(*m_surface);
    auto content = std::make_unique<Content>();
    m_content = content.get();
    m_hostingView->setContent(std::move(content));
    bool fadesIn = !m_inputs.appearance.value().reduceMotion;
    m_surface->setOpacity(fadesIn ? 0 : 1);
    if (fadesIn)
        m_fade.start(WindowPeekStyle::fade, m_surface->frameInterval(),
            [this](double share) { m_surface->setOpacity(share); });
}

}
