#include <algorithm>

#include "Hosts/MacOS/Conversions.h"
#include "Hosts/MacOS/KeyEvents.h"
#include "Hosts/MacOS/Rules/SettingsControls.h"
#include "Hosts/MacOS/SettingsRowView.h"
#include "Quorvel/Platform/Translation.h"

namespace {

constexpr CGFloat kWidth = 380;
constexpr CGFloat kHeight = 150;
constexpr CGFloat kIconSize = 18;

NSPasteboardType const kRowType = @"com.quorvel.settings-row";

}

/// The items of a list, in a table where they can be dragged.
@interface QVSettingsTable : NSObject <NSTableViewDataSource, NSTableViewDelegate>
@property (nonatomic, copy) void (^onMove)(NSInteger from, NSInteger before);
@property (nonatomic, copy) void (^onSelect)(void);
@property (nonatomic) const quorvel::SettingsList* list; ///< outlives this
@end

@implementation QVSettingsTable

- (NSInteger)numberOfRowsInTableView:(NSTableView*)table
{
    return self.list ? static_cast<NSInteger>(self.list->items.size()) : 0;
}

- (NSView*)tableView:(NSTableView*)table
    viewForTableColumn:(NSTableColumn*)column
                   row:(NSInteger)row
{
    const auto& item = self.list->items[static_cast<std::size_t>(row)];
    NSTextField* title = [NSTextField labelWithString:quorvel::shownText(item.title)];
    if (item.icon.empty())
        return title;
    NSImage* icon = [NSWorkspace.sharedWorkspace iconForFile:quorvel::shownText(item.icon)];
    icon.size = NSMakeSize(kIconSize, kIconSize);
    return [NSStackView stackViewWithViews:@[ [NSImageView imageViewWithImage:icon], title ]];
}

- (void)tableViewSelectionDidChange:(NSNotification*)notification
{
    if (self.onSelect)
        self.onSelect();
}

- (id<NSPasteboardWriting>)tableView:(NSTableView*)table pasteboardWriterForRow:(NSInteger)row
{
    if (!self.list->isMovable)
        return nil;
    NSPasteboardItem* item = [[NSPasteboardItem alloc] init];
    [item setString:@(row).stringValue forType:kRowType];
    return item;
}

- (NSDragOperation)tableView:(NSTableView*)table
                validateDrop:(id<NSDraggingInfo>)info
                 proposedRow:(NSInteger)row
       proposedDropOperation:(NSTableViewDropOperation)operation
{
    const bool isOurs = info.draggingSource == table && operation == NSTableViewDropAbove;
    return isOurs ? NSDragOperationMove : NSDragOperationNone;
}

- (BOOL)tableView:(NSTableView*)table
       acceptDrop:(id<NSDraggingInfo>)info
              row:(NSInteger)row
    dropOperation:(NSTableViewDropOperation)operation
{
    NSString* from = [info.draggingPasteboard stringForType:kRowType];
    if (!from || !self.onMove)
        return NO;
    self.onMove(from.integerValue, row);
    return YES;
}

@end

/// Keys move and remove what is selected, as the pointer and the button do.
@interface QVSettingsTableView : NSTableView
@property (nonatomic, copy) BOOL (^onKey)(quorvel::ListKey);
@end

@implementation QVSettingsTableView

- (void)keyDown:(NSEvent*)event
{
    const auto key = quorvel::listKeyOf(quorvel::keyEventOf(event));
    if (!key || !self.onKey || !self.onKey(*key))
        [super keyDown:event];
}

@end

namespace quorvel {

namespace {

class ListRow final : public SettingsRowView {
public:
    explicit ListRow(OnSettingsChange onChange)
        : m_onChange(std::move(onChange))
    {
        m_table.headerView = nil;
        m_table.dataSource = m_source;
        m_table.delegate = m_source;
        [m_table addTableColumn:[[NSTableColumn alloc] initWithIdentifier:@"item"]];
        [m_table registerForDraggedTypes:@[ kRowType ]];
        m_source.list = &m_list;
        m_source.onMove = ^(NSInteger from, NSInteger before) { drop(from, before); };
        m_source.onSelect = ^{ update(); };
        m_table.onKey = ^BOOL(ListKey key) { return act(key); };
        NSScrollView* scroll = [[NSScrollView alloc] initWithFrame:NSZeroRect];
        scroll.documentView = m_table;
        scroll.hasVerticalScroller = YES;
        scroll.borderType = NSBezelBorder;
        [scroll.widthAnchor constraintEqualToConstant:kWidth].active = YES;
        [scroll.heightAnchor constraintEqualToConstant:kHeight].active = YES;
        m_view = [NSStackView stackViewWithViews:@[ scroll, m_remove ]];
        m_view.orientation = NSUserInterfaceLayoutOrientationVertical;
        m_view.alignment = NSLayoutAttributeLeading;
        m_action = [QVAction actionOf:m_remove handler:^{ remove(); }];
    }
    ~ListRow() override
    {
        m_table.onKey = nil;
        m_source.list = nullptr;
        m_source.onMove = nil;
        m_source.onSelect = nil;
    }

    NSView* view() const override { return m_view; }
    void show(const SettingsRow& row) override
    {
        m_id = row.id;
        m_table.accessibilityLabel = shownText(row.title);
        const auto& list = std::get<SettingsList>(row.control);
        if (list != m_list)
            replace(list);
        m_remove.hidden = !m_list.isRemovable;
        update();
    }

private:
    const SettingsList::Item* item(NSInteger row) const
    {
        const bool isThere = row >= 0 && static_cast<std::size_t>(row) < m_list.items.size();
        return isThere ? &m_list.items[static_cast<std::size_t>(row)] : nullptr;
    }
    /// The table itself would keep the place of what is selected, where by now another may be.
    void replace(const SettingsList& list)
    {
        const auto* selected = item(m_table.selectedRow);
        const auto id = selected ? selected->id : std::string{};
        m_list = list;
        [m_table reloadData];
        const auto found = std::ranges::find(m_list.items, id, &SettingsList::Item::id);
        if (!selected || found == m_list.items.end())
            return [m_table deselectAll:nil];
        const auto place = static_cast<NSUInteger>(found - m_list.items.begin());
        [m_table selectRowIndexes:[NSIndexSet indexSetWithIndex:place] byExtendingSelection:NO];
    }
    void update() { m_remove.enabled = item(m_table.selectedRow) != nullptr; }
    void drop(NSInteger from, NSInteger before)
    {
        if (item(from))
            move(static_cast<std::size_t>(from),
                placeAfterDrop(static_cast<std::size_t>(from), static_cast<std::size_t>(before)));
    }
    void move(std::size_t from, std::size_t to)
    {
        m_onChange({SettingsChange::Move{m_id, m_list.items[from].id, to}});
    }
    /// False for what cannot be done here.
    bool act(ListKey key)
    {
        if (!item(m_table.selectedRow))
            return false;
        if (key == ListKey::remove) {
            if (m_list.isRemovable)
                remove();
            return m_list.isRemovable;
        }
        const auto from = static_cast<std::size_t>(m_table.selectedRow);
        const auto to = placeAfterKey(key, from, m_list.items.size());
        if (!m_list.isMovable || !to)
            return false;
        move(from, *to);
        return true;
    }
    void remove()
    {
        if (const auto* removed = item(m_table.selectedRow))
            m_onChange({SettingsChange::Remove{m_id, removed->id}});
    }

    OnSettingsChange m_onChange;
    std::string m_id;
    SettingsList m_list;
    QVSettingsTable* m_source = [[QVSettingsTable alloc] init];
    QVSettingsTableView* m_table = [[QVSettingsTableView alloc] initWithFrame:NSZeroRect];
    NSButton* m_remove = [NSButton buttonWithTitle:shownText(tr("Remove")) target:nil action:nil];
    NSStackView* m_view;
    QVAction* m_action;
};

}

std::unique_ptr<SettingsRowView> makeListRow(OnSettingsChange onChange)
{
    return std::make_unique<ListRow>(std::move(onChange));
}

}
