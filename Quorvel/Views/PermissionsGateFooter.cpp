#include "Quorvel/Views/PermissionsGateFooter.h"

#include <cmath>

#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/LabelView.h"
#include "Quorvel/Views/Kit/PushButton.h"

namespace quorvel {

namespace {

struct PermissionsGateFooterStyle {
    static constexpr double buttonHeight = 32;
    static constexpr double buttonWidth = 96;
    static constexpr double gap = 12; ///< between the buttons
    static constexpr double textGap = 16; ///< from the text to the buttons
    static constexpr LabelView::Look status{
        .size = 13, .color = &Palette::quietText, .mostLines = 2, .id = "status"};
};

double widthOf(const PushButton& button)
{
    return std::max(PermissionsGateFooterStyle::buttonWidth, button.idealWidth());
}

}

PermissionsGateFooter::PermissionsGateFooter(const Text& text, const Palette& palette)
    : m_status(
          &addChild(std::make_unique<LabelView>(text, palette, PermissionsGateFooterStyle::status)))
    , m_quit(&addChild(
          std::make_unique<PushButton>(text, palette, PushButton::Kind::standard, "quit")))
    , m_continue(&addChild(
          std::make_unique<PushButton>(text, palette, PushButton::Kind::prominent, "continue")))
{
    m_quit->setTitle(tr("Quit"));
    m_continue->setTitle(tr("Continue"));
    setComplete(false);
}

void PermissionsGateFooter::setComplete(bool isComplete)
{
    m_status->setText(isComplete ? tr("All required permissions granted")
                                 : tr("Grant both permissions to continue"));
    m_continue->setEnabled(isComplete);
}

double PermissionsGateFooter::textRoom(double width) const
{
    double buttons = widthOf(*m_quit) + PermissionsGateFooterStyle::gap + widthOf(*m_continue);
    return std::max(0.0, width - buttons - PermissionsGateFooterStyle::textGap);
}

double PermissionsGateFooter::heightFor(double width) const
{
    return std::max(
        PermissionsGateFooterStyle::buttonHeight, std::ceil(m_status->heightFor(textRoom(width))));
}

void PermissionsGateFooter::appearanceDidChange(bool isRightToLeft)
{
    m_isRightToLeft = isRightToLeft;
    m_status->measureAgain();
    layout();
}

void PermissionsGateFooter::layout()
{
    auto place = [this](const Rect& rect) {
        return m_isRightToLeft ? mirrored(rect, bounds().width) : rect;
    };
    double width = bounds().width;
    double y = std::round((bounds().height - PermissionsGateFooterStyle::buttonHeight) / 2);
    Rect last{width - widthOf(*m_continue), y, widthOf(*m_continue),
        PermissionsGateFooterStyle::buttonHeight};
    Rect first{last.x - PermissionsGateFooterStyle::gap - widthOf(*m_quit), y, widthOf(*m_quit),
        PermissionsGateFooterStyle::buttonHeight};
    m_continue->setFrame(place(last));
    m_quit->setFrame(place(first));
    m_status->setFrame(place({0, 0, textRoom(width), bounds().height}));
}

}
