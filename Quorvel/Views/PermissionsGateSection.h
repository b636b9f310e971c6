#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Quorvel/Views/Kit/MeasuredView.h"

namespace quorvel {

class LabelView;
class Text;
struct Palette;

/// A heading with its line of explanation, and below them a card with what it is about.
class PermissionsGateSection final : public MeasuredView {
public:
    struct Look {
        double rowGap = 0;
        bool hasLines = false; ///< between the rows
    };
    /// Text and palette outlive it.
    PermissionsGateSection(const Text&, const Palette&, Look);

    void setTitles(std::string title, std::string subtitle);
    template <typename RowType> RowType& addRow(std::unique_ptr<RowType> row)
    {
        auto& added = addChild(std::move(row));
        m_rows.push_back(&added);
        return added;
    }

    double heightFor(double width) const override;
    void appearanceDidChange(bool isRightToLeft) override;

private:
    bool isColumn() const override { return true; }
    void layout() override;
    void paint(Canvas&) const override;
    double headHeight(double width) const;

    const Palette& m_palette;
    const Look m_look;
    LabelView* m_title;
    LabelView* m_subtitle;
    std::vector<MeasuredView*> m_rows;
};

}
