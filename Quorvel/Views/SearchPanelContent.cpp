#include "Quorvel/Views/SearchPanelContent.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Views/AppLauncherPlaceholder.h"
#include "Quorvel/Views/AppLauncherSearchField.h"
#include "Quorvel/Views/BarBackground.h"
#include "Quorvel/Views/Kit/LabelView.h"

namespace quorvel {

namespace {

struct SearchPanelContentStyle {
    static constexpr double radius = 12;
    static constexpr double titleInset = 16;
    static constexpr double titleTop = 12;
    static constexpr double titleHeight = 20;
    static constexpr double fieldInset = 10;
    static constexpr double fieldTop = 40;
    static constexpr double fieldHeight = 30;
    static constexpr double listTop = 76;
    static constexpr double listInset = 6; ///< at the sides and below
    static constexpr LabelView::Look title{
        .size = 14, .weight = FontWeight::semibold, .role = AccessibleRole::heading};
};

}

SearchPanelContent::SearchPanelContent(const Inputs& inputs, Texts texts)
    : m_inputs(inputs)
    , m_texts(std::move(texts))
    , m_palette(Palette::of(inputs.platform.application.appearance().value()))
{
    auto& platform = m_inputs.platform;
    m_background = &addChild(std::make_unique<BarBackground>(m_palette));
    m_background->setCornerRadius(SearchPanelContentStyle::radius);
    m_title = &addChild(
        std::make_unique<LabelView>(platform.text, m_palette, SearchPanelContentStyle::title));
    m_title->setText(m_texts.title);
    m_searchField = &addChild(std::make_unique<AppLauncherSearchField>(
        TextFieldView::Inputs{platform, m_inputs.surface, m_palette}, m_texts.placeholder));
    m_searchField->onTextChanged = [this](auto& text) { queryDidChange(text); };
    m_searchField->field().onKey = [this](auto& event) { return useKey(event); };
    m_searchField->field().onMenuRequested = [this](Menu menu, const Rect& anchor) {
        if (onMenuRequested)
            onMenuRequested(std::move(menu), anchor);
    };
}

SearchPanelContent::~SearchPanelContent() = default;

void SearchPanelContent::setList(View& holder, ListView& list)
{
    m_listHolder = &holder;
    m_list = &list;
    m_list->setName(m_texts.title);
    m_list->onChanged = [this] { m_inputs.surface.accessibleTreeDidChange(); };
    m_placeholder
        = &addChild(std::make_unique<AppLauncherPlaceholder>(m_inputs.platform.text, m_palette));
    keep(m_inputs.platform.application.appearance().subscribe(
        [this](auto&) { appearanceDidChange(); }));
    keep(m_inputs.settings.data().subscribe([this](auto&) {
        if (m_background->theme() != m_inputs.settings.theme())
            appearanceDidChange();
    }));
    appearanceDidChange();
}

// MARK: What it shows

void SearchPanelContent::showList()
{
    setListShown(true);
}

void SearchPanelContent::showMessage(std::string text)
{
    m_placeholder->showMessage(std::move(text));
    setListShown(false);
}

void SearchPanelContent::showWaiting(std::string text)
{
    m_placeholder->showWaiting(std::move(text));
    setListShown(false);
}

void SearchPanelContent::setListShown(bool isShown)
{
    m_isListShown = isShown;
    layout();
    m_inputs.surface.accessibleTreeDidChange();
}

void SearchPanelContent::appearanceDidChange()
{
    auto& appearance = m_inputs.platform.application.appearance().value();
    m_palette
        = Palette::of(appearance, BarBackground::ground(m_inputs.settings.theme(), appearance));
    m_title->measureAgain();
    m_placeholder->measureAgain();
    m_searchField->field().appearanceDidChange();
    m_searchField->setRightToLeft(appearance.isRightToLeft);
    m_list->setReducesMotion(appearance.reduceMotion);
    directionDidChange(appearance.isRightToLeft);
    m_background->setTheme(m_inputs.settings.theme());
    m_background->setAppearance(appearance);
    invalidate();
}

void SearchPanelContent::layout()
{
    double width = bounds().width;
    m_background->setFrame(bounds());
    m_title->setFrame({SearchPanelContentStyle::titleInset, SearchPanelContentStyle::titleTop,
        width - 2 * SearchPanelContentStyle::titleInset, SearchPanelContentStyle::titleHeight});
    m_searchField->setFrame({SearchPanelContentStyle::fieldInset, SearchPanelContentStyle::fieldTop,
        width - 2 * SearchPanelContentStyle::fieldInset, SearchPanelContentStyle::fieldHeight});
    Rect list{SearchPanelContentStyle::listInset, SearchPanelContentStyle::listTop,
        width - 2 * SearchPanelContentStyle::listInset,
        std::max(0.0,
            bounds().height - SearchPanelContentStyle::listTop
                - SearchPanelContentStyle::listInset)};
    m_list->setFrameInterval(m_inputs.surface.frameInterval());
    m_listHolder->setFrame(m_isListShown ? list : Rect{});
    m_placeholder->setFrame(m_isListShown ? Rect{} : list);
}

void SearchPanelContent::paint(Canvas& canvas) const
{
    // Text must be readable whatever lies behind: the theme's shine lies over a plain ground.
    canvas.fillRounded(bounds(), SearchPanelContentStyle::radius, m_palette.ground);
}

// MARK: What is done with it

void SearchPanelContent::moveSelection(int side)
{
    selectAndReveal(*m_list, m_list->selectableBeside(m_list->selectedRow(), side));
}

void SearchPanelContent::moveSelectionByPage(int side)
{
    selectAndReveal(*m_list, m_list->selectableAPageFrom(m_list->selectedRow(), side));
}

void SearchPanelContent::showMenuOfSelected()
{
    auto row = m_list->selectedRow();
    if (!row)
        return;
    m_list->revealRow(*row);
    if (auto* view = m_list->rowView(*row))
        view->showContextMenu();
}

bool SearchPanelContent::clearQuery()
{
    if (m_searchField->field().text().empty())
        return false;
    m_searchField->clear();
    return true;
}

bool SearchPanelContent::takeTyping(const KeyEvent& event)
{
    return !m_searchField->field().hasFocus() && m_searchField->field().takeTyping(event);
}

bool SearchPanelContent::hasSystemField() const
{
    return m_searchField->field().isSystemControl();
}

bool SearchPanelContent::keyPressed(const KeyEvent& event)
{
    bool isFieldsOwn = m_searchField->field().hasFocus(); // which has been asked already
    return (!isFieldsOwn && useKey(event)) || (onKey && onKey(event));
}

void SearchPanelContent::flashScroller()
{
    m_list->flashScroller();
}

View* SearchPanelContent::preferredKeyView()
{
    return &m_searchField->field();
}

/// Input methods and dead keys write into the field wherever the keyboard is.
TextInputClient* SearchPanelContent::textInput()
{
    return m_searchField->field().textInput();
}

// MARK: What is where

std::vector<SearchPanelContent::ShownRow> SearchPanelContent::shownRows() const
{
    std::vector<ShownRow> rows;
    auto shown = m_list->frameInRoot();
    for (auto row : m_list->rowsWithViews()) {
        auto frame = m_list->rowFrame(row).translated(shown.x, shown.y).intersected(shown);
        if (!frame.isEmpty())
            rows.push_back({row, frame});
    }
    return rows;
}

Rect SearchPanelContent::fieldFrame() const
{
    return m_searchField->field().frameInRoot();
}

Rect SearchPanelContent::clearButtonFrame() const
{
    return m_searchField->clearButtonFrame();
}

AccessibleState SearchPanelContent::accessibleState() const
{
    AccessibleState state;
    state.role = AccessibleRole::panel;
    state.name = m_texts.title;
    return state;
}

}
