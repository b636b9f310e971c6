#include "Hosts/MacOS/KeyEvents.h"
#include "Hosts/MacOS/SettingsRowView.h"
#include "Quorvel/Platform/Translation.h"

namespace quorvel {

namespace {

/// A button that shows the shortcut, and records another while it is pressed in.
class ShortcutRow final : public SettingsRowView {
public:
    ShortcutRow(SettingsSource& source, OnSettingsChange onChange)
        : m_source(source)
        , m_onChange(std::move(onChange))
    {
        m_record.buttonType = NSButtonTypePushOnPushOff;
        m_status.font = [NSFont systemFontOfSize:NSFont.smallSystemFontSize];
        m_status.textColor = NSColor.secondaryLabelColor;
        NSStackView* buttons = [NSStackView stackViewWithViews:@[ m_record, m_clear ]];
        m_view = [NSStackView stackViewWithViews:@[ buttons, m_status ]];
        m_view.orientation = NSUserInterfaceLayoutOrientationVertical;
        m_view.alignment = NSLayoutAttributeLeading;
        m_recordAction = [QVAction
            actionOf:m_record
             handler:^{
                 m_source.setRecordingRow(m_record.state == NSControlStateValueOn ? m_row : "");
             }];
        m_clearAction = [QVAction actionOf:m_clear
                                   handler:^{
                                       m_source.setRecordingRow("");
                                       m_onChange({SettingsChange::Record{{}, m_row}});
                                   }];
        m_recording = source.recordingRow().subscribe([this](auto&) { recordingDidChange(); });
    }
    ~ShortcutRow() override
    {
        m_recording = {};
        if (isRecording())
            m_source.setRecordingRow("");
        setListening(false);
    }

    NSView* view() const override { return m_view; }
    void show(const SettingsRow& row) override
    {
        m_row = row.id;
        m_shortcut = std::get<SettingsShortcut>(row.control);
        m_record.accessibilityLabel = shownText(row.title);
        m_record.toolTip = shownText(m_shortcut.recordHelp);
        m_record.enabled = row.isEnabled;
        m_clear.enabled = row.isEnabled && m_shortcut.value.has_value();
        update();
    }

private:
    bool isRecording() const { return !m_row.empty() && m_source.recordingRow().value() == m_row; }

    void recordingDidChange()
    {
        setListening(isRecording());
        update();
    }

    void update()
    {
        m_record.state = isRecording() ? NSControlStateValueOn : NSControlStateValueOff;
        m_record.title
            = shownText(m_shortcut.text.empty() ? tr("Record Shortcut") : m_shortcut.text);
        m_status.stringValue = shownText(isRecording() ? m_shortcut.recordHelp : m_shortcut.status);
        m_status.hidden = m_status.stringValue.length == 0;
    }

    void setListening(bool isListening)
    {
        if (isListening == (m_monitor != nil))
            return;
        if (isListening) {
            m_monitor =
                [NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                                      handler:^NSEvent*(NSEvent* event) {
                                                          return m_source.keyPressed(event.keyCode,
                                                                     modifiersOf(event))
                                                              ? nil
                                                              : event;
                                                      }];
        } else {
            [NSEvent removeMonitor:m_monitor];
            m_monitor = nil;
        }
    }

    SettingsSource& m_source;
    OnSettingsChange m_onChange;
    std::string m_row; ///< its identifier
    SettingsShortcut m_shortcut;
    NSButton* m_record = [NSButton buttonWithTitle:@"" target:nil action:nil];
    NSButton* m_clear = [NSButton buttonWithTitle:shownText(tr("Clear")) target:nil action:nil];
    NSTextField* m_status = [NSTextField wrappingLabelWithString:@""];
    NSStackView* m_view;
    QVAction* m_recordAction;
    QVAction* m_clearAction;
    id m_monitor = nil;
    Subscription m_recording;
};

}

std::unique_ptr<SettingsRowView> makeShortcutRow(SettingsSource& source, OnSettingsChange onChange)
{
    return std::make_unique<ShortcutRow>(source, std::move(onChange));
}

}
