#include "Quorvel/Views/AppLauncherSearchField.h"

#include <cmath>
#include <utility>

#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/ButtonView.h"
#include "Quorvel/Views/Kit/Mirrored.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct AppLauncherSearchFieldStyle {
    static constexpr double radius = 7;
    static constexpr double inset = 10;
    static constexpr double symbolSize = 13;
    static constexpr double gap = 8; ///< between the symbol and the text
    static constexpr double fontSize = 13;
    static constexpr double buttonSize = 22;
    static constexpr double clearSymbolSize = 14;
};

}

class AppLauncherSearchField::ClearButton final : public ButtonView {
public:
    using ButtonView::ButtonView;

    std::string accessibleID() const override { return "clear"; }
    AccessibleState accessibleState() const override
    {
        return buttonState(tr("Clear"), tr("Press"));
    }

private:
    void paint(Canvas& canvas) const override
    {
        paintFace(canvas, bounds(), bounds().height / 2);
        double side = AppLauncherSearchFieldStyle::clearSymbolSize;
        canvas.drawSymbol(Symbol::clear, bounds().centred({side, side}), palette().quietText);
    }
};

AppLauncherSearchField::AppLauncherSearchField(
    const TextFieldView::Inputs& inputs, std::string placeholder)
    : m_palette(inputs.palette)
    , m_field(&addChild(std::make_unique<TextFieldView>(inputs, tr("Search"))))
    , m_clearButton(&addChild(std::make_unique<ClearButton>(inputs.palette)))
{
    m_field->setPlaceholder(std::move(placeholder));
    m_field->setFontSize(AppLauncherSearchFieldStyle::fontSize);
    m_field->onTextChanged = [this](auto& text) { textDidChange(text); };
    m_field->onFocusChanged = [this](bool) { invalidate(); };
    m_clearButton->onTapped = [this] { clear(); };
}

AppLauncherSearchField::~AppLauncherSearchField() = default;

void AppLauncherSearchField::textDidChange(const std::string& text)
{
    layout(); // the button comes or goes
    if (onTextChanged)
        onTextChanged(text);
}

/// Whoever empties it is about to type.
void AppLauncherSearchField::clear()
{
    m_field->takeAccessibleFocus();
    m_field->setText("");
    textDidChange("");
}

void AppLauncherSearchField::setRightToLeft(bool isRightToLeft)
{
    if (std::exchange(m_isRightToLeft, isRightToLeft) == isRightToLeft)
        return;
    layout();
    invalidate();
}

Rect AppLauncherSearchField::clearButtonFrame() const
{
    return m_clearButton->frame().isEmpty() ? Rect{} : m_clearButton->frameInRoot();
}

void AppLauncherSearchField::pointerPressed(const PointerPress&)
{
    m_field->takeAccessibleFocus();
}

void AppLauncherSearchField::layout()
{
    auto place
        = [&](const Rect& rect) { return m_isRightToLeft ? mirrored(rect, bounds().width) : rect; };
    double side = m_field->text().empty() ? 0 : AppLauncherSearchFieldStyle::buttonSize;
    double margin = (bounds().height - AppLauncherSearchFieldStyle::buttonSize) / 2;
    double left = AppLauncherSearchFieldStyle::inset + AppLauncherSearchFieldStyle::symbolSize
        + AppLauncherSearchFieldStyle::gap;
    double right
        = bounds().width - (side > 0 ? side + 2 * margin : AppLauncherSearchFieldStyle::inset);
    m_field->setFrame(place({left, 0, right - left, bounds().height}));
    m_clearButton->setFrame(
        place({bounds().width - margin - side, (bounds().height - side) / 2, side, side}));
}

void AppLauncherSearchField::paint(Canvas& canvas) const
{
    canvas.fillRounded(bounds(), AppLauncherSearchFieldStyle::radius, m_palette.fill);
    if (m_field->hasFocus())
        paintKeyFocus(canvas, bounds(), AppLauncherSearchFieldStyle::radius, m_palette);
    else
        canvas.strokeRounded(bounds(), AppLauncherSearchFieldStyle::radius, 1, m_palette.edge);
    double side = AppLauncherSearchFieldStyle::symbolSize;
    Rect symbol{
        AppLauncherSearchFieldStyle::inset, std::round((bounds().height - side) / 2), side, side};
    canvas.drawSymbol(Symbol::magnifyingGlass,
        m_isRightToLeft ? mirrored(symbol, bounds().width) : symbol, m_palette.quietText);
}

}
