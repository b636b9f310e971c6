#pragma once

#include "Settings/Rows/ActionRow.h"
#include "Settings/Toolkit/SignalHandler.h"

namespace quorvel::settings {

class ButtonRow final : public ActionRow {
public:
    ButtonRow(const SettingsRow&, const RowOutlets&);

    void show(const SettingsRow&) override;

private:
    GtkButton* m_button; ///< of the row
    SignalHandler m_clicked;
};

}
