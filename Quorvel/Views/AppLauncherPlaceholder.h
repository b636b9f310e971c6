#pragma once

#include <string>

#include "Quorvel/Views/Kit/LabelView.h"

namespace quorvel {

/// What a list to search in shows in its own place: that something is still being looked for, or
/// why there are no rows.
class AppLauncherPlaceholder final : public View {
public:
    /// Both outlive it.
    AppLauncherPlaceholder(const Text&, const Palette&);

    void showWaiting(std::string text);
    void showMessage(std::string text);
    void measureAgain();

private:
    void show(std::string text, bool isWaiting);
    void layout() override;
    void paint(Canvas&) const override;

    const Palette& m_palette;
    LabelView* m_label;
    bool m_isWaiting = false;
};

}
