#include "Hosts/MacOS/SettingsRowView.h"

#include <algorithm>

#include "Hosts/MacOS/Conversions.h"

@implementation QVAction {
    void (^_handler)(void);
}

+ (instancetype)actionOf:(NSControl*)control handler:(void (^)(void))handler
{
    QVAction* action = [[QVAction alloc] init];
    action->_handler = [handler copy];
    control.target = action;
    control.action = @selector(act:);
    return action;
}

- (void)act:(id)sender
{
    _handler();
}

@end

namespace quorvel {

NSString* shownText(const std::string& text)
{
    NSString* converted = toSystem(text);
    return converted ? converted : @"";
}

namespace {

class ToggleRow final : public SettingsRowView {
public:
    explicit ToggleRow(OnSettingsChange onChange)
        : m_onChange(std::move(onChange))
    {
        m_action = [QVAction
            actionOf:m_switch
             handler:^{
                 m_onChange({SettingsChange::Set{m_id, m_switch.state == NSControlStateValueOn}});
             }];
    }

    NSView* view() const override { return m_switch; }
    void show(const SettingsRow& row) override
    {
        m_id = row.id;
        m_switch.enabled = row.isEnabled;
        m_switch.state = std::get<SettingsToggle>(row.control).value ? NSControlStateValueOn
                                                                     : NSControlStateValueOff;
        m_switch.accessibilityLabel = shownText(row.title);
    }

private:
    OnSettingsChange m_onChange;
    std::string m_id;
    NSSwitch* m_switch = [[NSSwitch alloc] init];
    QVAction* m_action;
};

class ChoiceRow final : public SettingsRowView {
public:
    explicit ChoiceRow(OnSettingsChange onChange)
        : m_onChange(std::move(onChange))
    {
        m_action = [QVAction actionOf:m_button
                              handler:^{
                                  NSString* value = m_button.selectedItem.representedObject;
                                  m_onChange({SettingsChange::Set{m_id, fromSystem(value)}});
                              }];
    }

    NSView* view() const override { return m_button; }
    void show(const SettingsRow& row) override
    {
        const auto& choice = std::get<SettingsChoice>(row.control);
        m_id = row.id;
        if (choice.options != m_options) // the menu may be open
            fill(choice.options);
        const auto chosen
            = std::ranges::find(m_options, choice.value, &SettingsChoice::Option::value);
        [m_button selectItemAtIndex:chosen == m_options.end() ? -1 : chosen - m_options.begin()];
        m_button.enabled = row.isEnabled;
        m_button.accessibilityLabel = shownText(row.title);
    }

private:
    void fill(const std::vector<SettingsChoice::Option>& options)
    {
        m_options = options;
        [m_button removeAllItems];
        for (const auto& option : options) {
            // Not by their titles, of which a menu holds each but once.
            NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:shownText(option.title)
                                                          action:nil
                                                   keyEquivalent:@""];
            item.representedObject = shownText(option.value);
            [m_button.menu addItem:item];
        }
    }

    OnSettingsChange m_onChange;
    std::string m_id;
    std::vector<SettingsChoice::Option> m_options; ///< what the menu holds
    NSPopUpButton* m_button = [[NSPopUpButton alloc] initWithFrame:NSZeroRect pullsDown:NO];
    QVAction* m_action;
};

class ButtonRow final : public SettingsRowView {
public:
    explicit ButtonRow(OnSettingsChange onChange)
        : m_onChange(std::move(onChange))
    {
        m_action = [QVAction actionOf:m_button
                              handler:^{ m_onChange({SettingsChange::Press{m_id}}); }];
    }

    NSView* view() const override { return m_button; }
    void show(const SettingsRow& row) override
    {
        m_id = row.id;
        m_button.title = shownText(std::get<SettingsButton>(row.control).label);
        m_button.enabled = row.isEnabled;
        m_button.accessibilityHelp = shownText(row.title);
    }

private:
    OnSettingsChange m_onChange;
    std::string m_id;
    NSButton* m_button = [NSButton buttonWithTitle:@"" target:nil action:nil];
    QVAction* m_action;
};

class TextRow final : public SettingsRowView {
public:
    TextRow() { m_label.selectable = YES; }

    NSView* view() const override { return m_label; }
    void show(const SettingsRow& row) override
    {
        m_label.stringValue = shownText(std::get<SettingsText>(row.control).value);
    }

private:
    NSTextField* m_label = [NSTextField labelWithString:@""];
};

/// A file is shown in its folder, rather than opened by whatever claims such files.
class LinkRow final : public SettingsRowView {
public:
    LinkRow()
    {
        m_action = [QVAction actionOf:m_button
                              handler:^{
                                  NSWorkspace* workspace = NSWorkspace.sharedWorkspace;
                                  if (m_url.fileURL)
                                      [workspace activateFileViewerSelectingURLs:@[ m_url ]];
                                  else if (m_url)
                                      [workspace openURL:m_url];
                              }];
    }

    NSView* view() const override { return m_button; }
    void show(const SettingsRow& row) override
    {
        const auto& link = std::get<SettingsLink>(row.control);
        m_url = [NSURL URLWithString:shownText(link.url)];
        m_button.title = shownText(link.label);
        m_button.enabled = row.isEnabled;
        m_button.accessibilityHelp = shownText(row.title);
    }

private:
    NSButton* m_button = [NSButton buttonWithTitle:@"" target:nil action:nil];
    NSURL* m_url = nil;
    QVAction* m_action;
};

struct Maker {
    SettingsSource& source;
    OnSettingsChange onChange;

    std::unique_ptr<SettingsRowView> operator()(const SettingsToggle&) const
    {
        return std::make_unique<ToggleRow>(onChange);
    }
    std::unique_ptr<SettingsRowView> operator()(const SettingsChoice&) const
    {
        return std::make_unique<ChoiceRow>(onChange);
    }
    std::unique_ptr<SettingsRowView> operator()(const SettingsShortcut&) const
    {
        return makeShortcutRow(source, onChange);
    }
    std::unique_ptr<SettingsRowView> operator()(const SettingsButton&) const
    {
        return std::make_unique<ButtonRow>(onChange);
    }
    std::unique_ptr<SettingsRowView> operator()(const SettingsText&) const
    {
        return std::make_unique<TextRow>();
    }
    std::unique_ptr<SettingsRowView> operator()(const SettingsLink&) const
    {
        return std::make_unique<LinkRow>();
    }
    std::unique_ptr<SettingsRowView> operator()(const SettingsList&) const
    {
        return makeListRow(onChange);
    }
};

}

std::unique_ptr<SettingsRowView> SettingsRowView::make(
    const SettingsRow& row, SettingsSource& source, OnSettingsChange onChange)
{
    auto made = std::visit(Maker{source, std::move(onChange)}, row.control);
    made->show(row);
    return made;
}

}
