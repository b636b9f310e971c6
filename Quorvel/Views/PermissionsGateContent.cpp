#include "Quorvel/Views/PermissionsGateContent.h"

#include <algorithm>
#include <cmath>

#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/ColumnView.h"
#include "Quorvel/Views/Kit/LabelView.h"
#include "Quorvel/Views/Kit/PushButton.h"
#include "Quorvel/Views/Kit/ScrollView.h"
#include "Quorvel/Views/PermissionRequirementRow.h"
#include "Quorvel/Views/PermissionsGateFooter.h"
#include "Quorvel/Views/PermissionsGateHeader.h"
#include "Quorvel/Views/PermissionsGateSection.h"

namespace quorvel {

namespace {

struct PermissionsGateContentStyle {
    static constexpr double inset = 24; ///< around everything
    static constexpr double gap = 20;
    static constexpr ColumnView::Spacing body{
        .sides = inset, .top = inset, .bottom = gap, .gap = gap};
    static constexpr double footerPadding = 16; ///< above and below
    static constexpr double noteGap = 4;
    static constexpr double line = 1;
    static constexpr LabelView::Look note{.size = 13, .mostLines = 3};
};

bool pressesButton(const KeyEvent& event)
{
    return event.keyCode == KeyCode::enter || event.keyCode == KeyCode::keypadEnter
        || event.keyCode == KeyCode::space;
}

}

PermissionsGateContent::PermissionsGateContent(
    const Text& text, const std::string& bundleIdentifier, Dispatch& dispatch)
    : m_palette(Palette::of({}))
{
    auto body = std::make_unique<ColumnView>(PermissionsGateContentStyle::body);
    body->addPart(std::make_unique<PermissionsGateHeader>(text, m_palette));
    m_required = &body->addPart(std::make_unique<PermissionsGateSection>(
        text, m_palette, PermissionsGateSection::Look{.hasLines = true}));
    m_notes = &body->addPart(std::make_unique<PermissionsGateSection>(text, m_palette,
        PermissionsGateSection::Look{.rowGap = PermissionsGateContentStyle::noteGap}));
    m_scroll = &addChild(std::make_unique<ScrollView>(std::move(body), m_palette, dispatch));
    m_footer = &addChild(std::make_unique<PermissionsGateFooter>(text, m_palette));
    addRequirements(text);
    addNotes(text, bundleIdentifier);
    auto run = [](auto& action) {
        if (action)
            action();
    };
    m_footer->quitButton().onTapped = [this, run] { run(onQuit); };
    m_footer->continueButton().onTapped = [this, run] { run(onContinue); };
}

PermissionsGateContent::~PermissionsGateContent() = default;

void PermissionsGateContent::addRequirements(const Text& text)
{
    m_required->setTitles(
        tr("Required"), tr("Quorvel needs both permissions before it can start."));
    m_accessibility
        = &m_required->addRow(std::make_unique<PermissionRequirementRow>(text, m_palette,
            PermissionRequirementRow::Requirement{.icon = Symbol::figureStand,
                .title = tr("Accessibility"),
                .description = tr("Needed to observe windows and respond to focus changes."),
                .helpText = tr("System Settings > Privacy & Security > Accessibility")}));
    m_screenRecording
        = &m_required->addRow(std::make_unique<PermissionRequirementRow>(text, m_palette,
            PermissionRequirementRow::Requirement{.icon = Symbol::display,
                .title = tr("Screen Recording"),
                .description = tr("Needed to display window titles and thumbnails."),
                .helpText = tr("System Settings > Privacy & Security > Screen Recording")}));
}

void PermissionsGateContent::addNotes(const Text& text, const std::string& bundleIdentifier)
{
    m_notes->setTitles(
        tr("Notes"), tr("If Screen Recording was just granted, macOS may require a restart."));
    auto identifier
        = bundleIdentifier.empty() ? tr("<missing CFBundleIdentifier>") : bundleIdentifier;
    for (auto& note : {tr("1. Click Request Access for each missing permission."),
             tr("2. If needed, use Open Settings to grant it manually."),
             tr("3. Click Continue once both rows show Granted."),
             trFormat("4. Accessibility entry must match bundle ID: {}", identifier)}) {
        m_notes
            ->addRow(
                std::make_unique<LabelView>(text, m_palette, PermissionsGateContentStyle::note))
            .setText(note);
    }
}

void PermissionsGateContent::setState(const LaunchPermissionsState& state)
{
    m_accessibility->setGranted(state.accessibilityGranted);
    m_screenRecording->setGranted(state.screenRecordingGranted);
    m_footer->setComplete(state.areAllGranted());
}

void PermissionsGateContent::setAppearance(const Appearance& appearance)
{
    m_palette = Palette::of(appearance);
    m_scroll->setReducesMotion(appearance.reduceMotion);
    m_scroll->appearanceDidChange(appearance.isRightToLeft);
    m_footer->appearanceDidChange(appearance.isRightToLeft);
    layout();
    invalidate();
}

void PermissionsGateContent::flashScroller()
{
    m_scroll->flashScroller();
}

double PermissionsGateContent::footerRoom(double width) const
{
    return PermissionsGateContentStyle::line + 2 * PermissionsGateContentStyle::footerPadding
        + m_footer->heightFor(width - 2 * PermissionsGateContentStyle::inset);
}

Size PermissionsGateContent::idealSize() const
{
    return {kWidth, std::ceil(m_scroll->heightFor(kWidth) + footerRoom(kWidth))};
}

void PermissionsGateContent::layout()
{
    double width = std::max(0.0, bounds().width - 2 * PermissionsGateContentStyle::inset);
    double room = footerRoom(bounds().width);
    m_scroll->setFrame({0, 0, bounds().width, std::max(0.0, bounds().height - room)});
    double footer = m_footer->heightFor(width);
    m_footer->setFrame({PermissionsGateContentStyle::inset,
        bounds().height - PermissionsGateContentStyle::footerPadding - footer, width, footer});
}

void PermissionsGateContent::paint(Canvas& canvas) const
{
    canvas.fill(bounds(), m_palette.windowGround);
    canvas.fill({0,
                    m_footer->frame().y - PermissionsGateContentStyle::footerPadding
                        - PermissionsGateContentStyle::line,
                    bounds().width, PermissionsGateContentStyle::line},
        m_palette.windowEdge);
}

View* PermissionsGateContent::preferredKeyView()
{
    for (auto* row : {m_accessibility, m_screenRecording}) {
        if (!row->isGranted())
            return &row->requestButton();
    }
    return &m_footer->continueButton();
}

/// Return presses the default button wherever the keyboard is, but on Quit, while there is
/// something to continue with; space presses what has the keyboard. Nobody quits by an Escape too
/// many.
bool PermissionsGateContent::keyPressed(const KeyEvent& event)
{
    if (event.keyCode == KeyCode::escape || (event.isRepeat && pressesButton(event)))
        return true;
    if (event.keyCode == KeyCode::pageUp || event.keyCode == KeyCode::pageDown) {
        m_scroll->scrollBy(m_scroll->frame().height * (event.keyCode == KeyCode::pageUp ? -1 : 1));
        return true;
    }
    bool isReturn = event.keyCode == KeyCode::enter || event.keyCode == KeyCode::keypadEnter;
    return isReturn && !m_footer->quitButton().accessibleState().hasKeyFocus
        && m_footer->continueButton().performAccessibleAction(0);
}

AccessibleState PermissionsGateContent::accessibleState() const
{
    AccessibleState state;
    state.role = AccessibleRole::window;
    state.name = tr("Quorvel Setup");
    return state;
}

}
