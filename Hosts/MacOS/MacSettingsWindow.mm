#include "Hosts/MacOS/MacSettingsWindow.h"

#include "Hosts/MacOS/Conversions.h"
#include "Hosts/MacOS/Focus.h"
#include "Hosts/MacOS/Rules/SettingsControls.h"
#include "Hosts/MacOS/StandardKeys.h"
#include "Quorvel/Platform/Translation.h"

@interface QVSettingsWindow : NSWindow
/// Another window has the keyboard, or this one goes.
@property (nonatomic, copy) void (^onLeave)(void);
@end

@implementation QVSettingsWindow

- (void)resignKeyWindow
{
    [super resignKeyWindow];
    if (self.onLeave)
        self.onLeave();
}

- (void)close
{
    [super close];
    quorvel::handBackFocus();
}

- (BOOL)performKeyEquivalent:(NSEvent*)event
{
    return [super performKeyEquivalent:event]
        || quorvel::handleStandardKeyEquivalent(event, self, ^{ [self performClose:nil]; });
}

@end

namespace quorvel {

namespace {

constexpr CGFloat kMargin = 20;
constexpr CGFloat kTextWidth = 380;
constexpr CGFloat kRowSpacing = 12;
constexpr CGFloat kGroupSpacing = 24; ///< above a group

NSTextField* helpLabel()
{
    NSTextField* label = [NSTextField wrappingLabelWithString:@""];
    label.font = [NSFont systemFontOfSize:NSFont.smallSystemFontSize];
    label.textColor = NSColor.secondaryLabelColor;
    label.preferredMaxLayoutWidth = kTextWidth;
    return label;
}

void setHelp(NSTextField* label, const std::string& help)
{
    label.stringValue = shownText(help);
    label.hidden = help.empty();
}

NSImage* pageImage(const SettingsPage& page)
{
    return [NSImage imageWithSystemSymbolName:toSystem(symbolNameOf(page.icon))
                     accessibilityDescription:shownText(page.title)];
}

}

MacSettingsWindow::~MacSettingsWindow() { close(); }

void MacSettingsWindow::close()
{
    m_changes = {};
    m_rows.clear();
    ((QVSettingsWindow*)m_window).onLeave = nil;
    [m_window close];
    m_window = nil;
    m_source = nullptr;
}

bool MacSettingsWindow::show(SettingsSource& source)
{
    if (m_source != &source)
        follow(source);
    [NSApp activateIgnoringOtherApps:YES];
    [m_window makeKeyAndOrderFront:nil];
    return true;
}

void MacSettingsWindow::follow(SettingsSource& source)
{
    m_source = &source;
    const bool isNew = !m_window;
    if (isNew)
        makeWindow();
    makePages();
    if (isNew)
        [m_window center]; // it has its size by now
    m_changes = source.description().subscribe([this](auto&) { descriptionDidChange(); });
}

void MacSettingsWindow::makeWindow()
{
    QVSettingsWindow* window = [[QVSettingsWindow alloc]
        initWithContentRect:NSMakeRect(0, 0, 1, 1)
                  styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable
                    backing:NSBackingStoreBuffered
                      defer:YES];
    window.releasedWhenClosed = NO;
    window.toolbarStyle = NSWindowToolbarStylePreference;
    window.onLeave = ^{ m_source->setRecordingRow(""); };
    m_tabs = [[NSTabViewController alloc] init];
    m_tabs.tabStyle = NSTabViewControllerTabStyleToolbar;
    window.contentViewController = m_tabs;
    m_window = window;
}

void MacSettingsWindow::makePages()
{
    const NSInteger selected = m_tabs.selectedTabViewItemIndex;
    m_rows.clear();
    m_described = m_source->description().value();
    NSMutableArray<NSTabViewItem*>* items = [NSMutableArray array];
    for (const auto& page : m_described.pages) {
        NSViewController* controller = [[NSViewController alloc] init];
        controller.view = makePage(page);
        controller.title = shownText(page.title);
        NSTabViewItem* item = [NSTabViewItem tabViewItemWithViewController:controller];
        item.label = shownText(page.title);
        item.image = pageImage(page);
        [items addObject:item];
    }
    m_tabs.tabViewItems = items;
    if (selected > 0 && selected < static_cast<NSInteger>(items.count))
        m_tabs.selectedTabViewItemIndex = selected;
}

NSView* MacSettingsWindow::makePage(const SettingsPage& page)
{
    NSGridView* grid = [NSGridView gridViewWithNumberOfColumns:2 rows:0];
    grid.rowSpacing = kRowSpacing;
    grid.rowAlignment = NSGridRowAlignmentFirstBaseline;
    [grid columnAtIndex:0].xPlacement = NSGridCellPlacementTrailing;
    for (const auto& group : page.groups)
        addGroup(grid, group);
    grid.translatesAutoresizingMaskIntoConstraints = NO;
    NSView* view = [[NSView alloc] initWithFrame:NSZeroRect];
    [view addSubview:grid];
    [NSLayoutConstraint activateConstraints:@[
        [grid.topAnchor constraintEqualToAnchor:view.topAnchor constant:kMargin],
        [grid.leadingAnchor constraintEqualToAnchor:view.leadingAnchor constant:kMargin],
        [view.trailingAnchor constraintEqualToAnchor:grid.trailingAnchor constant:kMargin],
        [view.bottomAnchor constraintEqualToAnchor:grid.bottomAnchor constant:kMargin],
    ]];
    return view;
}

void MacSettingsWindow::addGroup(NSGridView* grid, const SettingsGroup& group)
{
    const NSInteger first = grid.numberOfRows;
    if (!group.title.empty()) {
        NSTextField* title = [NSTextField labelWithString:shownText(group.title)];
        title.font = [NSFont boldSystemFontOfSize:NSFont.systemFontSize];
        [grid addRowWithViews:@[ NSGridCell.emptyContentView, title ]];
    }
    if (!group.help.empty()) {
        NSTextField* help = helpLabel();
        setHelp(help, group.help);
        [grid addRowWithViews:@[ NSGridCell.emptyContentView, help ]];
    }
    for (const auto& row : group.rows)
        addRow(grid, row);
    if (first > 0 && grid.numberOfRows > first)
        [grid rowAtIndex:first].topPadding = kGroupSpacing - kRowSpacing;
}

void MacSettingsWindow::addRow(NSGridView* grid, const SettingsRow& row)
{
    Row made{SettingsRowView::make(
                 row, *m_source, [this](const SettingsChange& change) { apply(change); }),
        helpLabel()};
    setHelp(made.help, row.help);
    NSStackView* control = [NSStackView stackViewWithViews:@[ made.control->view(), made.help ]];
    control.orientation = NSUserInterfaceLayoutOrientationVertical;
    control.alignment = NSLayoutAttributeLeading;
    NSTextField* title = [NSTextField labelWithString:shownText(row.title)];
    [grid addRowWithViews:@[ title, control ]];
    m_rows.emplace_back(row.id, std::move(made));
}

void MacSettingsWindow::descriptionDidChange()
{
    if (haveSameControls(m_described, m_source->description().value()))
        return showValues();
    // Not now: a control that goes may be the one that is acting.
    CFRunLoopPerformBlock(CFRunLoopGetMain(), kCFRunLoopCommonModes, ^{
        if (m_source && !haveSameControls(m_described, m_source->description().value()))
            makePages();
    });
    CFRunLoopWakeUp(CFRunLoopGetMain());
}

void MacSettingsWindow::showValues()
{
    const auto& description = m_source->description().value();
    for (auto& [id, made] : m_rows) {
        if (const auto* row = description.row(id)) {
            made.control->show(*row);
            setHelp(made.help, row->help);
        }
    }
}

void MacSettingsWindow::apply(const SettingsChange& change)
{
    const auto refusal = m_source->apply(change);
    if (!refusal)
        return;
    showValues(); // the control shows already what the user wanted
    tell(refusal->reason);
}

void MacSettingsWindow::tell(const std::string& reason)
{
    NSAlert* alert = [[NSAlert alloc] init];
    alert.messageText = shownText(reason);
    [alert addButtonWithTitle:shownText(tr("OK"))];
    [alert beginSheetModalForWindow:m_window completionHandler:nil];
}

}
