#include "Quorvel/Views/BarPanel.h"

#include <utility>

#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Views/Menu/Menus.h"

namespace quorvel {

BarPanel::BarPanel(
    const Platform& platform, Menus& menus, const PanelOptions& options, std::size_t screenIndex)
    : Bar(options, screenIndex)
    , m_platform(platform)
    , m_menus(menus)
    , m_surface(platform.surfaces.createPanel(options, m_hostingView))
    , m_tooltips(platform, *m_surface, options.display)
    , m_slide(platform, *m_surface)
{
    m_hostingView.attach(*m_surface);
    m_hostingView.onScroll = [this](const ScrollEvent& event) { scroll(event); };
    m_hostingView.onKeyboardWanted
        = [this] { return m_surface->isVisible() && m_surface->takeKeyboard(); };
    m_hostingView.onKeyboardChanged = [this](bool hasKeyboard) {
        updateNumbers();
        if (!hasKeyboard && m_content)
            m_content->keyboardDidLeave();
    };
    m_hostingView.onPointedAt = [this](const View* view) { m_tooltips.pointAt(view); };
    m_hostingView.onUseChanged = [this] { tellUse(); };
    m_hostingView.onUsed = [this] { m_tooltips.dismiss(); };
    m_hostingView.onHoverChanged = [this](bool isHovered) {
        m_isHovered = isHovered;
        updateKeying();
    };
}

BarPanel::~BarPanel()
{
    onUseChanged = nullptr;
    // A surface that goes tells of the pointer that was over it.
    m_hostingView.onHoverChanged = nullptr;
    m_hostingView.onKeyboardChanged = nullptr;
    m_hostingView.onPointedAt = nullptr;
    m_hostingView.setContent(nullptr);
}

void BarPanel::scroll(const ScrollEvent& event)
{
    auto [step, sideways] = m_scroll.handle(event, m_platform.dispatch.now());
    if (step != 0 && onScroll) {
        auto upright = event;
        upright.deltaY = step;
        onScroll(upright);
    } else if (sideways != 0 && m_content) {
        bool isMirrored = m_content->isRightToLeft();
        m_content->scrollSideways(isMirrored ? sideways : -sideways, event.unit);
    }
}

void BarPanel::setAllowBecomeKey(bool isAllowed)
{
    m_allowBecomeKey = isAllowed;
    updateKeying();
}

void BarPanel::setHoverKeyingSuppressed(bool isSuppressed)
{
    m_isHoverKeyingSuppressed = isSuppressed;
    updateKeying();
}

/// Over the chips a click must not take the keyboard from the program that has it.
void BarPanel::updateKeying()
{
    bool isSuppressed = m_isHoverKeyingSuppressed || m_areChipsHovered;
    m_surface->setCanBecomeKey(m_allowBecomeKey || (m_isHovered && !isSuppressed));
}

void BarPanel::fill(const BarContents& contents)
{
    auto view = makeContentView(contents);
    m_areChipsHovered = false;
    updateKeying();
    m_content = view.get();
    m_hostingView.isRightToLeft = [this] { return m_content && m_content->isRightToLeft(); };
    m_hostingView.setContent(std::move(view));
    m_isShown = true;
    m_tooltips.barDidAppear();
    updateNumbers();
    tellUse();
}

bool BarPanel::isInUse() const
{
    return m_hostingView.isInUse() || (m_content && m_content->isBusy());
}

void BarPanel::tellUse() const
{
    if (onUseChanged)
        onUseChanged();
}

/// The keyboard is there for a drag too, without a walk.
void BarPanel::updateNumbers()
{
    if (m_content)
        m_content->setShowsNumbers(keyFocusedView() != nullptr);
}

std::unique_ptr<BarContentView> BarPanel::makeContentView(const BarContents& contents)
{
    auto view = std::make_unique<BarContentView>(
        BarContentView::Inputs{contents, m_platform, *m_surface, spaceID(), display()});
    view->onMenuRequested
        = [this](Menu menu, const Rect& anchor, std::function<void(MenuEnding)> onClosed) {
              m_tooltips.dismiss();
              m_menus.popUp(*m_surface, std::move(menu), anchor, std::move(onClosed));
          };
    view->onBusyChanged = [this] { tellUse(); };
    view->onShownChanged = [this] { m_tooltips.update(); };
    view->onDropTold
        = [this](std::string text, const Rect& place) { m_tooltips.tell(std::move(text), place); };
    view->onChipsAreaHoverChanged = [this](bool areHovered) {
        m_areChipsHovered = areHovered;
        updateKeying();
    };
    return view;
}

void BarPanel::clear()
{
    m_content = nullptr;
    m_isShown = false;
    m_hostingView.setContent(nullptr);
    tellUse();
}

void BarPanel::setShown(bool isShown)
{
    bool wasShown = std::exchange(m_isShown, isShown);
    if (!isShown)
        m_tooltips.dismiss();
    else if (!wasShown)
        m_tooltips.barDidAppear();
    if (m_content)
        m_content->setShown(isShown);
}

void BarPanel::useItem(std::size_t place, ItemUse use)
{
    if (m_content)
        m_content->useItem(place, use);
}

void BarPanel::dismissPopups()
{
    m_tooltips.dismiss();
    if (m_content)
        m_content->dismissThumbnailPopupImmediate();
}

void BarPanel::setLauncherOpen(bool isOpen)
{
    if (m_content)
        m_content->setLauncherOpen(isOpen);
}

}
