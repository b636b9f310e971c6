#include "Quorvel/Views/AppLauncherPlaceholder.h"

#include <cmath>
#include <utility>

namespace quorvel {

namespace {

struct AppLauncherPlaceholderStyle {
    static constexpr double symbolSize = 36;
    static constexpr double gap = 10;
    static constexpr double inset = 16;
    static constexpr LabelView::Look label{.size = 13,
        .alignment = TextAlignment::centre,
        .color = &Palette::quietText,
        .mostLines = 3,
        .id = "message"};
};

}

AppLauncherPlaceholder::AppLauncherPlaceholder(const Text& text, const Palette& palette)
    : m_palette(palette)
    , m_label(
          &addChild(std::make_unique<LabelView>(text, palette, AppLauncherPlaceholderStyle::label)))
{
}

void AppLauncherPlaceholder::showWaiting(std::string text)
{
    show(std::move(text), true);
}

void AppLauncherPlaceholder::showMessage(std::string text)
{
    show(std::move(text), false);
}

void AppLauncherPlaceholder::show(std::string text, bool isWaiting)
{
    m_isWaiting = isWaiting;
    m_label->setText(std::move(text));
    layout();
    invalidate();
}

void AppLauncherPlaceholder::measureAgain()
{
    m_label->measureAgain();
    layout();
}

void AppLauncherPlaceholder::layout()
{
    auto inner = bounds().inset(AppLauncherPlaceholderStyle::inset, 0);
    double height = m_label->heightFor(inner.width);
    double y = m_isWaiting ? inner.centre().y + AppLauncherPlaceholderStyle::gap / 2
                           : inner.centre().y - height / 2;
    m_label->setFrame({inner.x, std::round(y), inner.width, std::ceil(height)});
}

void AppLauncherPlaceholder::paint(Canvas& canvas) const
{
    if (!m_isWaiting)
        return;
    double side = AppLauncherPlaceholderStyle::symbolSize;
    canvas.drawSymbol(Symbol::appDashed,
        {std::round(bounds().centre().x - side / 2),
            m_label->frame().y - AppLauncherPlaceholderStyle::gap - side, side, side},
        m_palette.quietText);
}

}
