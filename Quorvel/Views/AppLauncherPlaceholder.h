#pragma once

#include <string>

#include "Quorvel/Views/Kit/LabelView.h"

namespace quorvel {

/// What the launcher shows where there is no list: that the applications are still being looked
/// for, or that none matches.
class AppLauncherPlaceholder final : public View {
public:
    /// Both outlive it.
    AppLauncherPlaceholder(const Text&, const Palette&);

    void showLoading();
    void showNoMatch(const std::string& query);
    void measureAgain();

private:
    void layout() override;
    void paint(Canvas&) const override;

    const Palette& m_palette;
    LabelView* m_label;
    bool m_isLoading = false;
};

}
