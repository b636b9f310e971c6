#pragma once

#include "Settings/Rows/ActionRow.h"
#include "Settings/Toolkit/SignalHandler.h"

namespace quorvel::settings {

/// A switch. Its knob moves when it is pressed, and its colour when the bar has agreed.
class ToggleRow final : public ActionRow {
public:
    ToggleRow(const SettingsRow&, const RowOutlets&);

    void show(const SettingsRow&) override;

private:
    GtkSwitch* m_switch; ///< of the row
    SignalHandler m_pressed;
};

}
