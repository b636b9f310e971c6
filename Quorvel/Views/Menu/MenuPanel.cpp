#include "Quorvel/Views/Menu/MenuPanel.h"

#include <cmath>

#include "Quorvel/Core/KeyboardShortcut.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Translation.h"

namespace quorvel {

namespace {

MenuKeyTexts keyTexts(const Menu& menu, const Platform& platform)
{
    MenuKeyTexts texts;
    for (auto& item : menu) {
        texts.push_back(!item.keys ? ""
                                   : shortcutText(platform.hotkeys,
                                         {static_cast<std::uint32_t>(item.keys->key),
                                             hotkeyModifiersFrom(item.keys->modifiers)}));
    }
    return texts;
}

Rect wholePoints(const Rect& rect)
{
    return {std::round(rect.x), std::round(rect.y), std::max(1.0, std::floor(rect.width)),
        std::max(1.0, std::floor(rect.height))};
}

}

MenuPanel::MenuPanel(const Platform& platform, const Screen& screen, const Menu& menu,
    const Place& place, MenuListener& listener)
    : m_listener(listener)
    , m_view(&m_root.addChild(std::make_unique<MenuView>(menu, keyTexts(menu, platform),
          platform.text, platform.application.appearance().value())))
    , m_frame(wholePoints(place(m_view->wantedSize())))
    , m_surface(platform.surfaces.createPanel({.display = screen.number.value_or(DisplayNumber{}),
                                                  .title = tr("Menu"),
                                                  .kind = PanelKind::menu},
          *this))
{
    auto size = Rect::from({}, m_frame.size());
    m_root.setFrame(size);
    m_view->setFrame(size);
    m_view->onChosen = [this](std::size_t row) { m_listener.rowChosen(*this, row); };
    m_root.setHost(this);
    m_surface->setFrame(m_frame.flipped(platform.displays.screens().front().frame.height));
    m_surface->orderFront();
    m_appearance = platform.application.appearance().subscribe([this](auto& appearance) {
        m_view->setAppearance(appearance);
        m_surface->accessibleTreeDidChange();
    });
}

MenuPanel::~MenuPanel()
{
    m_root.setHost(nullptr);
}

void MenuPanel::highlight(std::optional<std::size_t> row)
{
    if (row == m_view->highlighted())
        return;
    m_view->highlight(row);
    m_surface->accessibleTreeDidChange();
}

std::vector<MenuEntry> MenuPanel::entries() const
{
    std::vector<MenuEntry> entries;
    for (std::size_t row = 0; row < m_view->menu().size(); ++row) {
        auto& item = m_view->item(row);
        auto frame = rowFrame(row);
        if (!item.isSeparator() && !m_view->rowFrame(row).isEmpty())
            entries.push_back({item.title, item.isEnabled, frame});
    }
    return entries;
}

void MenuPanel::pointerEvent(const PointerEvent& event)
{
    m_listener.pointerEvent(event, onScreen(event.location));
}

void MenuPanel::scrollEvent(const ScrollEvent& event)
{
    m_listener.scrollEvent(event, onScreen(event.location));
}

}
