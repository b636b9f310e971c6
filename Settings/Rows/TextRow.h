#pragma once

#include "Settings/Rows/ActionRow.h"

namespace quorvel::settings {

/// A fact, which can be marked and copied.
class TextRow final : public ActionRow {
public:
    explicit TextRow(const SettingsRow&);

    void show(const SettingsRow&) override;

private:
    GtkLabel* m_value; ///< of the row
};

}
