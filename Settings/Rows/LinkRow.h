#pragma once

#include <string>

#include "Settings/Rows/ActionRow.h"
#include "Settings/Toolkit/SignalHandler.h"

namespace quorvel::settings {

/// Opens something elsewhere.
class LinkRow final : public ActionRow {
public:
    LinkRow(const SettingsRow&, const RowOutlets&);

    void show(const SettingsRow&) override;

private:
    void open();

    const RowOutlets& m_outlets;
    GtkButton* m_button; ///< of the row
    AdwButtonContent* m_content; ///< of the button
    std::string m_url;
    xdg::GCancellation m_opening{g_cancellable_new()};
    SignalHandler m_clicked;
};

}
