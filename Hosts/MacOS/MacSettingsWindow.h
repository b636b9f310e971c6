#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Hosts/MacOS/SettingsRowView.h"

namespace quorvel {

/// The settings in a window with a toolbar of pages, made of AppKit's controls. Main thread.
class MacSettingsWindow final : public SettingsWindow {
public:
    MacSettingsWindow() = default;
    ~MacSettingsWindow() override;
    MacSettingsWindow(const MacSettingsWindow&) = delete;
    MacSettingsWindow& operator=(const MacSettingsWindow&) = delete;

    bool show(SettingsSource&) override;
    void close() override;

private:
    struct Row {
        std::unique_ptr<SettingsRowView> control;
        NSTextField* help;
    };

    void follow(SettingsSource&);
    void makeWindow();
    void makePages();
    NSView* makePage(const SettingsPage&);
    void addGroup(NSGridView*, const SettingsGroup&);
    void addRow(NSGridView*, const SettingsRow&);
    void descriptionDidChange();
    void showValues();
    void apply(const SettingsChange&);
    void tell(const std::string& reason);

    SettingsSource* m_source = nullptr; ///< null before it is shown and once it is closed
    NSWindow* m_window = nil;
    NSTabViewController* m_tabs = nil;
    SettingsDescription m_described; ///< what the controls were made for
    std::vector<std::pair<std::string, Row>> m_rows; ///< by the id
    Subscription m_changes;
};

}
