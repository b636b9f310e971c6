#pragma once

#include "Settings/Rows/RowView.h"

namespace quorvel::settings {

/// A row with a title and a line of help, and a control at its end.
class ActionRow : public RowView {
public:
    void show(const SettingsRow&) override;

protected:
    explicit ActionRow(GtkWidget* row = adw_action_row_new());

    AdwActionRow* row() const { return ADW_ACTION_ROW(widget()); }
    /// Places a control, which a click on the row or its key activates too. The row's title is part
    /// of its accessible name.
    void setControl(GtkWidget*);
    void setHelp(const std::string&);

private:
    GtkWidget* m_control = nullptr; ///< of the row
};

/// What a screen reader calls it.
void setAccessibleName(GtkWidget*, const std::string&);

}
