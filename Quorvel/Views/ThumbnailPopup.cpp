#include "Quorvel/Views/ThumbnailPopup.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <utility>

#include "Quorvel/Core/ThumbnailService.h"
#include "Quorvel/Platform/Translation.h"

namespace quorvel {

namespace {

struct ThumbnailPopupStyle {
    static constexpr double padding = 8;
    static constexpr double spacing = 4; ///< between cards
    static constexpr double radius = 12;
    static constexpr double screenMargin = 8;
    static constexpr double arrowHalfWidth = 9;
    static constexpr double moreHeight = 22;
    static constexpr double moreTextSize = 12;
    static constexpr Duration fade = seconds(0.12);
    static constexpr Duration move = seconds(0.16);
};

constexpr std::size_t kPicturesAFrame = 8;

constexpr std::array kPictureSizes{
    ThumbnailService::kPopupPictureSize, Size{180, 112.5}, Size{132, 82.5}};

Size cardsSize(std::size_t columns, std::size_t rows, Size card)
{
    auto n = static_cast<double>(columns);
    auto m = static_cast<double>(rows);
    return {n * (card.width + ThumbnailPopupStyle::spacing) - ThumbnailPopupStyle::spacing,
        m * (card.height + ThumbnailPopupStyle::spacing) - ThumbnailPopupStyle::spacing};
}

/// Until a card with it fits, with its proportions.
Size shrunkTo(Size picture, Size room)
{
    auto around = ThumbnailCard::sizeFor({});
    double share = std::clamp(std::min((room.width - around.width) / picture.width,
                                  (room.height - around.height) / picture.height),
        0.0, 1.0);
    return {std::max(1.0, std::floor(picture.width * share)),
        std::max(1.0, std::floor(picture.height * share))};
}

}

// MARK: Where everything goes

ThumbnailPopupLayout ThumbnailPopupLayout::of(
    std::size_t windowCount, const Rect& chip, const Rect& screen, bool isRightToLeft)
{
    ThumbnailPopupLayout layout;
    double room
        = screen.width - 2 * (ThumbnailPopupStyle::screenMargin + ThumbnailPopupStyle::padding);
    double height = screen.maxY() - chip.maxY()
        - 2 * (ThumbnailPopupStyle::screenMargin + ThumbnailPopupStyle::padding) - kArrowHeight
        - ThumbnailPopupStyle::moreHeight;
    // The largest pictures with which all windows stand in one row, else as many rows as fit.
    std::size_t columns = 1;
    for (auto size : kPictureSizes) {
        layout.pictureSize = size;
        auto card = ThumbnailCard::sizeFor(size);
        columns = std::max<std::size_t>(1,
            static_cast<std::size_t>((room + ThumbnailPopupStyle::spacing)
                / (card.width + ThumbnailPopupStyle::spacing)));
        if (columns >= windowCount)
            break;
    }
    layout.pictureSize = shrunkTo(layout.pictureSize,
        {room, height + (windowCount > columns ? 0 : ThumbnailPopupStyle::moreHeight)});
    auto card = ThumbnailCard::sizeFor(layout.pictureSize);
    auto mostRows = std::max<std::size_t>(1,
        static_cast<std::size_t>(std::max(0.0, height + ThumbnailPopupStyle::spacing)
            / (card.height + ThumbnailPopupStyle::spacing)));
    columns = std::clamp<std::size_t>(windowCount, 1, columns);
    auto rows = std::clamp<std::size_t>((windowCount + columns - 1) / columns, 1, mostRows);
    auto shown = std::min(windowCount, columns * rows);
    layout.hiddenCount = windowCount - shown;
    auto inner = cardsSize(columns, rows, card);
    for (std::size_t index = 0; index < shown; ++index) {
        auto column = static_cast<double>(index % columns);
        auto row = static_cast<double>(index / columns);
        double x = column * (card.width + ThumbnailPopupStyle::spacing);
        if (isRightToLeft)
            x = inner.width - x - card.width;
        layout.cards.push_back({ThumbnailPopupStyle::padding + x,
            ThumbnailPopupStyle::padding + row * (card.height + ThumbnailPopupStyle::spacing),
            card.width, card.height});
    }
    Size whole{inner.width + 2 * ThumbnailPopupStyle::padding,
        inner.height + 2 * ThumbnailPopupStyle::padding
            + (layout.hiddenCount > 0 ? ThumbnailPopupStyle::moreHeight : 0) + kArrowHeight};
    double left = std::max(screen.x + ThumbnailPopupStyle::screenMargin,
        std::min(chip.centre().x - whole.width / 2,
            screen.maxX() - ThumbnailPopupStyle::screenMargin - whole.width));
    // On the smallest of screens it has to lie over the bar.
    double bottom = std::max(screen.y, std::min(chip.maxY(), screen.maxY() - whole.height));
    layout.frame = Rect{std::round(left), bottom, whole.width, whole.height}.intersected(screen);
    layout.pointAt(chip);
    return layout;
}

void ThumbnailPopupLayout::pointAt(const Rect& chip)
{
    constexpr double least = ThumbnailPopupStyle::radius + ThumbnailPopupStyle::arrowHalfWidth;
    arrowX = std::clamp(chip.centre().x - frame.x, least, std::max(least, frame.width - least));
}

// MARK: What it looks like

class ThumbnailPopup::Content final : public View {
public:
    explicit Content(const Palette& palette) : m_palette(palette) { }

    void setLayout(const ThumbnailPopupLayout& layout)
    {
        bool isOtherArrow = std::exchange(m_arrowX, layout.arrowX) != layout.arrowX;
        bool isOtherCount = std::exchange(m_hiddenCount, layout.hiddenCount) != layout.hiddenCount;
        if (isOtherArrow || isOtherCount)
            invalidate();
    }
    std::string accessibleID() const override { return "popup"; }
    AccessibleState accessibleState() const override
    {
        AccessibleState state;
        state.role = AccessibleRole::popup;
        state.name = tr("Windows");
        return state;
    }

private:
    void paint(Canvas& canvas) const override
    {
        auto face = bounds();
        face.height -= ThumbnailPopupLayout::kArrowHeight;
        double tip = bounds().maxY() - 1;
        auto arrow = [&](double inset, const Color& color) {
            canvas.fillPolygon(
                {{m_arrowX - ThumbnailPopupStyle::arrowHalfWidth + inset, face.maxY() - 1},
                    {m_arrowX + ThumbnailPopupStyle::arrowHalfWidth - inset, face.maxY() - 1},
                    {m_arrowX, tip - inset}},
                color);
        };
        canvas.fillRounded(face, ThumbnailPopupStyle::radius, m_palette.popupGround);
        canvas.strokeRounded(face, ThumbnailPopupStyle::radius, 1, m_palette.popupEdge);
        arrow(0, m_palette.popupEdge);
        arrow(1, m_palette.popupGround);
        if (m_hiddenCount > 0) {
            Rect more{0,
                face.maxY() - ThumbnailPopupStyle::padding - ThumbnailPopupStyle::moreHeight,
                face.width, ThumbnailPopupStyle::moreHeight};
            canvas.drawText(std::to_string(m_hiddenCount) + " more", more,
                {.size = ThumbnailPopupStyle::moreTextSize,
                    .color = m_palette.text,
                    .alignment = TextAlignment::centre});
        }
    }

    const Palette& m_palette;
    double m_arrowX = 0;
    std::size_t m_hiddenCount = 0;
};

// MARK: On the screen

ThumbnailPopup::ThumbnailPopup(const Inputs& inputs)
    : m_inputs(inputs)
    , m_palette(Palette::of(inputs.appearance.value()))
    , m_surface(inputs.surfaces.createPanel(
          {.display = inputs.display, .title = tr("Windows"), .kind = PanelKind::popup},
          m_hostingView))
    , m_animation(inputs.dispatch)
{
    m_hostingView.attach(*m_surface);
    m_appearanceChanged = inputs.appearance.subscribe([this](auto& appearance) {
        m_palette = Palette::of(appearance);
        if (m_content)
            m_content->invalidate();
    });
    m_hostingView.onHoverChanged = [this](bool isHovered) {
        if (onHoverChanged)
            onHoverChanged(isHovered);
    };
}

ThumbnailPopup::~ThumbnailPopup() = default;

void ThumbnailPopup::show(const std::vector<ChipData>& chips, const Rect& chip, const Rect& screen,
    const std::optional<Rect>& animatingFrom)
{
    auto& appearance = m_inputs.appearance.value();
    m_layout = ThumbnailPopupLayout::of(chips.size(), chip, screen, appearance.isRightToLeft);
    makeCards(chips);
    m_animation.stop();
    bool fadesIn = !appearance.reduceMotion && !animatingFrom;
    // The window fades, not its pictures: composing fifty of them anew takes longer than a frame.
    m_surface->setOpacity(fadesIn ? 0 : 1);
    m_surface->setFrame(m_layout.frame);
    m_surface->orderFront();
    if (fadesIn)
        m_animation.start(ThumbnailPopupStyle::fade, m_surface->frameInterval(),
            [this](double share) { m_surface->setOpacity(share); });
    else if (!appearance.reduceMotion)
        animate(*animatingFrom);
}

void ThumbnailPopup::hide()
{
    m_following = {};
    m_animation.stop();
    m_surface->orderOut();
}

void ThumbnailPopup::animate(const Rect& from)
{
    auto to = m_layout.frame;
    m_animation.start(
        ThumbnailPopupStyle::move, m_surface->frameInterval(), [this, from, to](double share) {
            // The size is the new one from the start: only the place moves.
            double x = from.centre().x + (to.centre().x - from.centre().x) * share - to.width / 2;
            m_surface->setFrame({std::round(x), to.y, to.width, to.height});
        });
}

void ThumbnailPopup::makeCards(const std::vector<ChipData>& chips)
{
    auto& appearance = m_inputs.appearance.value();
    m_filling = {};
    m_following = {};
    m_pictures.clear();
    m_cards.clear();
    m_windows.clear();
    std::ranges::transform(chips, std::back_inserter(m_windows), &ChipData::id);
    auto content = std::make_unique<Content>(m_palette);
    m_content = content.get();
    m_content->setLayout(m_layout);
    for (std::size_t index = 0; index < m_layout.cards.size(); ++index) {
        auto& card
            = m_content->addChild(std::make_unique<ThumbnailCard>(m_palette, m_layout.pictureSize));
        card.setRightToLeft(appearance.isRightToLeft);
        card.setChip(chips[index]);
        card.setFrame(m_layout.cards[index]);
        card.onTapped = [this, id = chips[index].id] {
            if (onWindowChosen)
                onWindowChosen(id);
        };
        card.onCloseTapped = card.onMiddleTapped = [this](WindowID id) {
            if (onWindowClosed)
                onWindowClosed(id);
        };
        m_cards.push_back(&card);
    }
    askForPictures();
    m_hostingView.setContent(std::move(content));
    m_surface->accessibleTreeDidChange();
}

/// A few each frame: to draw those of fifty windows takes longer than one.
void ThumbnailPopup::askForPictures()
{
    auto end = std::min(m_cards.size(), m_pictures.size() + kPicturesAFrame);
    while (m_pictures.size() < end)
        askForPicture(*m_cards[m_pictures.size()]);
    if (end == m_cards.size())
        return followWindows();
    m_filling
        = m_inputs.dispatch.main().after(m_surface->frameInterval(), [this] { askForPictures(); });
}

/// The one there is at once, the fresh one when it comes.
void ThumbnailPopup::askForPicture(ThumbnailCard& card)
{
    auto id = card.chip().id;
    card.setPicture(m_inputs.thumbnailService.cached(id));
    m_pictures.push_back(m_inputs.thumbnailService.thumbnail(id, [&card](auto picture) {
        if (picture)
            card.setPicture(std::move(picture));
    }));
}

void ThumbnailPopup::followWindows()
{
    std::vector<WindowID> windows;
    for (auto* card : m_cards)
        windows.push_back(card->chip().id);
    m_following = m_inputs.thumbnailService.follow(windows, PictureSize::popup,
        [this](WindowID id, const WindowPicture& picture, const Rect&) {
            if (auto* card = cardOf(id))
                card->setPicture(picture);
        });
}

ThumbnailCard* ThumbnailPopup::cardOf(WindowID id) const
{
    auto found = std::ranges::find(m_cards, id, [](auto* card) { return card->chip().id; });
    return found == m_cards.end() ? nullptr : *found;
}

bool ThumbnailPopup::update(const std::vector<ChipData>& chips, const Rect& chip)
{
    if (!std::ranges::is_permutation(chips, m_windows, {}, &ChipData::id))
        return false;
    for (auto* card : m_cards)
        card->setChip(*std::ranges::find(chips, card->chip().id, &ChipData::id));
    m_layout.pointAt(chip);
    m_content->setLayout(m_layout);
    m_surface->accessibleTreeDidChange();
    return true;
}

Rect ThumbnailPopup::onScreen(const Rect& inRoot) const
{
    auto frame = m_surface->frame();
    return {frame.x + inRoot.x, frame.maxY() - inRoot.maxY(), inRoot.width, inRoot.height};
}

std::vector<ThumbnailPopup::CardPlace> ThumbnailPopup::cardPlaces() const
{
    std::vector<CardPlace> places;
    for (auto* card : m_cards)
        places.push_back(
            {card->chip().id, onScreen(card->frameInRoot()), onScreen(card->closeButtonFrame())});
    return places;
}

}
