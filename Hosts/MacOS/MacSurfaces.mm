#include "Hosts/MacOS/MacSurfaces.h"

#include "Hosts/MacOS/Conversions.h"
#include "Hosts/MacOS/MacPanel.h"

/// One menu while it is open: the system's, and what each of its entries does.
@interface QVMenuTarget : NSObject
- (instancetype)initWithMenu:(quorvel::Menu)menu
                    onClosed:(std::function<void()>)onClosed
                       queue:(quorvel::Queue*)queue;
- (void)openBeside:(NSRect)anchor of:(NSView*)view;
- (void)cancel;
@end

@implementation QVMenuTarget {
    std::vector<quorvel::Work> _actions;
    quorvel::Work _chosen;
    quorvel::Work _onClosed;
    quorvel::Queue* _queue;
    NSMenu* _menu;
    BOOL _isOpen;
    BOOL _isCancelled;
    BOOL _hasClosed;
}

- (instancetype)initWithMenu:(quorvel::Menu)menu
                    onClosed:(std::function<void()>)onClosed
                       queue:(quorvel::Queue*)queue
{
    self = [super init];
    if (self) {
        _onClosed = std::move(onClosed);
        _queue = queue;
        _menu = [self makeMenu:menu];
    }
    return self;
}

- (NSMenu*)makeMenu:(const quorvel::Menu&)items
{
    NSMenu* menu = [[NSMenu alloc] initWithTitle:@""];
    menu.autoenablesItems = NO;
    for (const quorvel::MenuItem& item : items)
        [menu addItem:item.title.empty() ? [NSMenuItem separatorItem] : [self makeEntry:item]];
    return menu;
}

- (NSMenuItem*)makeEntry:(const quorvel::MenuItem&)item
{
    NSString* title = quorvel::toSystem(item.title);
    NSMenuItem* entry = [[NSMenuItem alloc] initWithTitle:title ? title : @""
                                                   action:@selector(choose:)
                                            keyEquivalent:@""];
    entry.target = self;
    entry.enabled = item.isEnabled;
    entry.state = item.isChecked ? NSControlStateValueOn : NSControlStateValueOff;
    entry.tag = static_cast<NSInteger>(_actions.size());
    _actions.push_back(item.action);
    if (!item.submenu.empty())
        entry.submenu = [self makeMenu:item.submenu];
    return entry;
}

- (void)openBeside:(NSRect)anchor of:(NSView*)view
{
    if (!_isCancelled && view.window) {
        // Flipped: this is the upper left corner, where the menu of a bar at the bottom edge ends.
        const NSPoint above = NSMakePoint(NSMinX(anchor), NSMinY(anchor) - _menu.size.height);
        _isOpen = YES;
        [_menu popUpMenuPositioningItem:nil atLocation:above inView:view];
        _isOpen = NO;
    }
    [self close];
}

- (void)cancel
{
    _isCancelled = YES;
    [_menu cancelTrackingWithoutAnimation];
    if (!_isOpen)
        [self close];
}

- (void)close
{
    if (_hasClosed)
        return;
    _hasClosed = YES;
    if (_onClosed)
        _queue->async(std::move(_onClosed));
    if (_chosen)
        _queue->async(std::move(_chosen));
}

- (void)choose:(NSMenuItem*)entry
{
    const auto index = static_cast<std::size_t>(entry.tag);
    if (_isCancelled || index >= _actions.size() || !_actions[index])
        return;
    // Nobody says whether this comes before the menu's call returns.
    if (_hasClosed)
        _queue->async(_actions[index]);
    else
        _chosen = _actions[index];
}

@end

namespace quorvel {

MacSurfaces::MacSurfaces(const MacWindowServer& windowServer, Queue& mainQueue)
    : m_windowServer(windowServer)
    , m_mainQueue(mainQueue)
{
}

MacSurfaces::~MacSurfaces() { [m_menu cancel]; }

std::unique_ptr<PanelSurface> MacSurfaces::createPanel(
    const PanelOptions& options, SurfaceClient& client)
{
    return std::make_unique<MacPanel>(m_windowServer, options, client);
}

Subscription MacSurfaces::monitorPointer(PointerScope scope, std::function<void()> handler)
{
    id monitor = nil;
    if (scope == PointerScope::ownWindows) {
        monitor = [NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskMouseMoved
                                                        handler:^NSEvent*(NSEvent* event) {
                                                            handler();
                                                            return event;
                                                        }];
    } else {
        monitor = [NSEvent addGlobalMonitorForEventsMatchingMask:NSEventMaskMouseMoved
                                                         handler:^(NSEvent*) { handler(); }];
    }
    if (!monitor)
        return {};
    return Subscription{std::shared_ptr<void>{(__bridge_retained void*)monitor,
        [](void* object) { [NSEvent removeMonitor:(__bridge_transfer id)object]; }}};
}

void MacSurfaces::closeMenu()
{
    [m_menu cancel];
    m_menu = nil;
}

void MacSurfaces::popUpMenu(
    PanelSurface& surface, Menu menu, const Rect& anchor, std::function<void()> onClosed)
{
    closeMenu();
    QVSurfaceView* view = static_cast<MacPanel&>(surface).view();
    QVMenuTarget* target = [[QVMenuTarget alloc] initWithMenu:std::move(menu)
                                                     onClosed:std::move(onClosed)
                                                        queue:&m_mainQueue];
    m_menu = target;
    const NSRect place = toSystem(anchor);
    // An open menu runs a loop of its own inside the call. Begun from the main queue that would
    // hold up all further work of the queue, so it begins from the run loop.
    CFRunLoopPerformBlock(CFRunLoopGetMain(), kCFRunLoopCommonModes, ^{
        // A menu takes the release of the press that opened it.
        [view cancelPress];
        [target openBeside:place of:view];
    });
    CFRunLoopWakeUp(CFRunLoopGetMain());
}

}
