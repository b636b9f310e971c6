#pragma once

#include <vector>

#include "Settings/Rows/ActionRow.h"
#include "Settings/Toolkit/SignalHandler.h"

namespace quorvel::settings {

/// A menu of values.
class ChoiceRow final : public ActionRow {
public:
    ChoiceRow(const SettingsRow&, const RowOutlets&);

    void show(const SettingsRow&) override;

private:
    AdwComboRow* comboRow() const { return ADW_COMBO_ROW(widget()); }
    void showOptions(const SettingsChoice&);

    std::vector<SettingsChoice::Option> m_options;
    SignalHandler m_selected;
};

}
