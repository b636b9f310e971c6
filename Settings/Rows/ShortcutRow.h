#pragma once

#include <memory>

#include "Settings/Rows/ActionRow.h"
#include "Settings/Toolkit/KeyboardLayout.h"
#include "Settings/Toolkit/ShortcutRecording.h"
#include "Settings/Toolkit/SignalHandler.h"

namespace quorvel::settings {

/// A combination of keys: a button that records another, and one that clears it.
class ShortcutRow final : public ActionRow {
public:
    ShortcutRow(const SettingsRow&, const RowOutlets&);
    ~ShortcutRow() override { stopRecording(); }

    void show(const SettingsRow&) override;
    bool isInUse() const override { return m_recording != nullptr; }
    void endUse() override;

private:
    void toggleRecording();
    void startRecording();
    void stopRecording();
    void record(std::optional<SettingsShortcut::Keys>);
    std::string valueText() const;
    void refresh();

    const RowOutlets& m_outlets;
    SettingsRow m_description;
    GtkWidget* m_warning; ///< this and the others are the row's
    GtkButton* m_button;
    GtkWidget* m_clear;
    KeyboardLayout m_layout; ///< names the key
    std::unique_ptr<ShortcutRecording> m_recording;
    SignalHandler m_clicked;
    SignalHandler m_cleared;
    SignalHandler m_focusLeft;
};

}
