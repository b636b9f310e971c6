#pragma once

#include <memory>
#include <string>
#include <utility>

#include "Quorvel/Views/Kit/ColumnView.h"

namespace quorvel {

class LabelView;
class Text;
struct Palette;

/// A heading with its line of explanation, and below them a card with what it is about.
class PermissionsGateSection final : public ColumnView {
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
        return m_card->addPart(std::move(row));
    }

private:
    LabelView* m_title;
    LabelView* m_subtitle;
    ColumnView* m_card;
};

}
