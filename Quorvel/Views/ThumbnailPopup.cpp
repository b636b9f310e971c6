#include "Quorvel/Views/ThumbnailPopup.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "Quorvel/Core/ThumbnailService.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/WrappedText.h"
#include "Quorvel/Views/PeekFading.h"

namespace quorvel {

namespace {

struct ThumbnailPopupStyle {
    static constexpr double moreTextSize = 12;
    static constexpr std::size_t mostTitleLines = 8;
    static constexpr Duration fade = seconds(0.12);
    static constexpr Duration move = seconds(0.16);
};

constexpr std::size_t kPicturesAFrame = 8;

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
                {{m_arrowX - ThumbnailPopupLayout::kArrowHalfWidth + inset, face.maxY() - 1},
                    {m_arrowX + ThumbnailPopupLayout::kArrowHalfWidth - inset, face.maxY() - 1},
                    {m_arrowX, tip - inset}},
                color);
        };
        canvas.fillRounded(face, ThumbnailPopupLayout::kRadius, m_palette.popupGround);
        canvas.strokeRounded(face, ThumbnailPopupLayout::kRadius, 1, m_palette.popupEdge);
        arrow(0, m_palette.popupEdge);
        arrow(1, m_palette.popupGround);
        if (m_hiddenCount > 0) {
            Rect more{0,
                face.maxY() - ThumbnailPopupLayout::kPadding - ThumbnailPopupLayout::kMoreHeight,
                face.width, ThumbnailPopupLayout::kMoreHeight};
            canvas.drawText(trCount("{} more", "{} more", m_hiddenCount), more,
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
    , m_peek(inputs.dispatch, inputs.surfaces, inputs.peeking)
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
        if (!isHovered)
            m_peek.end();
        if (onHoverChanged)
            onHoverChanged(isHovered);
    };
}

ThumbnailPopup::~ThumbnailPopup()
{
    // A surface that goes tells of the pointer that was over it.
    m_hostingView.onHoverChanged = nullptr;
}

void ThumbnailPopup::show(const std::vector<ChipData>& chips, const Rect& chip, const Rect& screen,
    const std::optional<Rect>& animatingFrom)
{
    auto& appearance = m_inputs.appearance.value();
    m_titleLines = titleLines(chips);
    m_layout = ThumbnailPopupLayout::of(
        {chips.size(), m_titleLines.size()}, chip, screen, appearance.isRightToLeft);
    makeCards(chips);
    m_animation.stop();
    bool fadesIn = !appearance.reduceMotion && !animatingFrom;
    // The window fades, not its pictures: composing fifty of them anew takes longer than a frame.
    m_surface->setOpacity(fadesIn ? 0 : 1);
    m_surface->setFrame(m_layout.frame);
    m_surface->orderFront();
    if (m_inputs.peeking)
        m_inputs.peeking->setFrameInterval(m_surface->frameInterval());
    if (fadesIn)
        m_animation.start(ThumbnailPopupStyle::fade, m_surface->frameInterval(),
            [this](double share) { m_surface->setOpacity(share); });
    else if (!appearance.reduceMotion)
        animate(*animatingFrom);
}

void ThumbnailPopup::hide()
{
    m_peek.end();
    m_following = {};
    m_filling = {};
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

// MARK: Cards

/// A title that stands alone is shown whole; several cards are as high as each other.
std::vector<std::string> ThumbnailPopup::titleLines(const std::vector<ChipData>& chips) const
{
    if (chips.size() != 1)
        return {};
    auto& chip = chips.front();
    return wrappedLines(m_inputs.text, chip.windowTitle.empty() ? chip.appName : chip.windowTitle,
        ThumbnailCard::titleStyle(),
        ThumbnailCard::titleWidth(ThumbnailService::kPopupPictureSize.width),
        ThumbnailPopupStyle::mostTitleLines);
}

void ThumbnailPopup::makeCards(const std::vector<ChipData>& chips)
{
    auto keyCard = std::exchange(m_keyCard, std::nullopt);
    m_peek.end();
    m_filling = {};
    m_following = {};
    m_filled = 0;
    m_cards.clear();
    m_windows.clear();
    std::ranges::transform(chips, std::back_inserter(m_windows), &ChipData::id);
    auto content = std::make_unique<Content>(m_palette);
    m_content = content.get();
    m_content->setLayout(m_layout);
    for (std::size_t index = 0; index < m_layout.cards.size(); ++index) {
        auto& card = makeCard(chips[index]);
        card.setFrame(m_layout.cards[index]);
        m_cards.push_back({&card, {}});
    }
    askForPictures();
    m_hostingView.setContent(std::move(content));
    if (keyCard && !m_cards.empty())
        setKeyCard(std::min(*keyCard, m_cards.size() - 1));
    m_surface->accessibleTreeDidChange();
}

ThumbnailCard& ThumbnailPopup::makeCard(const ChipData& chip)
{
    auto& card
        = m_content->addChild(std::make_unique<ThumbnailCard>(m_palette, m_layout.pictureSize));
    card.setRightToLeft(m_inputs.appearance.value().isRightToLeft);
    card.setChip(chip);
    card.setTitleLines(m_titleLines);
    connect(card);
    return card;
}

void ThumbnailPopup::connect(ThumbnailCard& card)
{
    card.onHovered = [this, id = card.chip().id](bool isHovered) {
        // A popup that the keyboard opens may come under a pointer that nobody moves.
        m_peek.pointAt(isHovered && !m_keyCard ? std::optional{id} : std::nullopt);
    };
    card.onTapped = [this, id = card.chip().id] {
        m_peek.end();
        if (onWindowChosen)
            onWindowChosen(id);
    };
    card.onCloseTapped = card.onMiddleTapped = [this, id = card.chip().id] {
        m_peek.end();
        if (onWindowClosed)
            onWindowClosed(id);
    };
    card.onMenuRequested = [this](WindowID id, const Rect& place) {
        m_peek.end();
        if (onMenuRequested)
            onMenuRequested(id, onScreen(place));
    };
}

/// A few each frame: to draw those of fifty windows takes longer than one.
void ThumbnailPopup::askForPictures()
{
    auto end = std::min(m_cards.size(), m_filled + kPicturesAFrame);
    for (; m_filled < end; ++m_filled)
        askForPicture(m_cards[m_filled]);
    if (end == m_cards.size())
        return followWindows();
    m_filling
        = m_inputs.dispatch.main().after(m_surface->frameInterval(), [this] { askForPictures(); });
}

/// The one there is at once, the fresh one when it comes.
void ThumbnailPopup::askForPicture(ShownCard& shown)
{
    auto& card = *shown.card;
    auto id = card.chip().id;
    card.setPicture(m_inputs.thumbnailService.cached(id));
    shown.picture = m_inputs.thumbnailService.thumbnail(id, [&card](auto picture) {
        if (picture)
            card.setPicture(std::move(picture));
    });
}

void ThumbnailPopup::followWindows()
{
    std::vector<WindowID> windows;
    windows.reserve(m_cards.size());
    for (auto& shown : m_cards)
        windows.push_back(shown.card->chip().id);
    m_following = m_inputs.thumbnailService.follow(windows, PictureSize::popup,
        [this](WindowID id, const WindowPicture& picture, const Rect&) {
            if (auto* card = cardOf(id))
                card->setPicture(picture);
        });
}

ThumbnailCard* ThumbnailPopup::cardOf(WindowID id) const
{
    auto found = std::ranges::find(m_cards, id, [](auto& shown) { return shown.card->chip().id; });
    return found == m_cards.end() ? nullptr : found->card;
}

bool ThumbnailPopup::update(const std::vector<ChipData>& chips, const Rect& chip)
{
    bool isSame = std::ranges::is_permutation(chips, m_windows, {}, &ChipData::id)
        && titleLines(chips).size() == m_titleLines.size();
    bool isHeld = m_hostingView.pointer()
        && std::ranges::any_of(chips, [this](auto& known) { return cardOf(known.id) != nullptr; });
    if (!isSame && !isHeld)
        return false;
    removeCardsExcept(chips);
    if (!m_titleLines.empty() && isSame)
        m_titleLines = titleLines(chips);
    for (auto& known : chips) {
        if (auto* card = cardOf(known.id)) {
            card->setChip(known);
            card->setTitleLines(m_titleLines);
        }
    }
    m_layout.pointAt(chip);
    m_content->setLayout(m_layout);
    m_peek.update();
    m_surface->accessibleTreeDidChange();
    return true;
}

void ThumbnailPopup::removeCardsExcept(const std::vector<ChipData>& chips)
{
    for (std::size_t index = m_cards.size(); index-- > 0;) {
        auto& card = *m_cards[index].card;
        if (std::ranges::find(chips, card.chip().id, &ChipData::id) != chips.end())
            continue;
        m_cards.erase(m_cards.begin() + static_cast<std::ptrdiff_t>(index));
        if (index < m_filled)
            --m_filled;
        m_peek.windowDidGo(card.chip().id);
        m_content->removeChild(card);
    }
    if (m_keyCard)
        setKeyCard(std::min(*m_keyCard, m_cards.size() - 1));
}

// MARK: The keyboard

void ThumbnailPopup::takeKeys()
{
    auto focused
        = std::ranges::find_if(m_cards, [](auto& shown) { return shown.card->chip().isFocused; });
    if (m_cards.empty())
        return;
    setKeyCard(focused == m_cards.end() ? 0 : static_cast<std::size_t>(focused - m_cards.begin()));
}

void ThumbnailPopup::setKeyCard(std::optional<std::size_t> index)
{
    m_keyCard = index;
    if (index)
        m_peek.end();
    m_hostingView.setKeyFocused(index ? m_cards[*index].card : nullptr);
}

std::optional<ThumbnailPopup::CardPlace> ThumbnailPopup::keyCard() const
{
    if (!m_keyCard)
        return {};
    return placeOf(*m_cards[*m_keyCard].card);
}

bool ThumbnailPopup::walk(const KeyEvent& event)
{
    if (!m_keyCard)
        return false;
    auto next = event.keyCode == KeyCode::tab
        ? std::optional{(*m_keyCard + (event.has(KeyModifier::shift) ? m_cards.size() - 1 : 1))
              % m_cards.size()}
        : neighbour(*m_keyCard, event.keyCode);
    if (next)
        setKeyCard(next);
    return next.has_value();
}

/// Sideways in the order of the cards, up and down in their columns; at the first and the last one
/// the keyboard stays. Absent: there is none that way.
std::optional<std::size_t> ThumbnailPopup::neighbour(std::size_t card, KeyCode key) const
{
    auto forwards = m_inputs.appearance.value().isRightToLeft ? KeyCode::left : KeyCode::right;
    auto backwards = forwards == KeyCode::right ? KeyCode::left : KeyCode::right;
    if (key == forwards)
        return std::min(card + 1, m_cards.size() - 1);
    if (key == backwards)
        return card > 0 ? card - 1 : 0;
    if (key == KeyCode::home)
        return 0;
    if (key == KeyCode::end)
        return m_cards.size() - 1;
    if (key != KeyCode::up && key != KeyCode::down)
        return {};
    auto from = m_cards[card].card->frame();
    double step = key == KeyCode::up ? -from.height / 2 : from.height * 1.5;
    for (std::size_t index = 0; index < m_cards.size(); ++index) {
        if (m_cards[index].card->frame().contains(Point{from.centre().x, from.y + step}))
            return index;
    }
    return key == KeyCode::up ? std::optional{card} : std::nullopt;
}

// MARK: Where things are

Rect ThumbnailPopup::onScreen(const Rect& inRoot) const
{
    auto frame = m_surface->frame();
    return {frame.x + inRoot.x, frame.maxY() - inRoot.maxY(), inRoot.width, inRoot.height};
}

ThumbnailPopup::CardPlace ThumbnailPopup::placeOf(const ThumbnailCard& card) const
{
    return {card.chip().id, onScreen(card.frameInRoot()), onScreen(card.closeButtonFrame())};
}

std::vector<ThumbnailPopup::CardPlace> ThumbnailPopup::cardPlaces() const
{
    std::vector<CardPlace> places;
    places.reserve(m_cards.size());
    for (auto& shown : m_cards)
        places.push_back(placeOf(*shown.card));
    return places;
}

}
