#include "Hosts/MacOS/MacSurfaces.h"

#include "Hosts/MacOS/Conversions.h"
#include "Hosts/MacOS/MacPanel.h"

/// One menu while it is open: the system's, and what each of its entries does.
@interface QVMenuTarget : NSObject
- (instancetype)initWithMenu:(quorvel::Menu)menu queue:(quorvel::Queue*)queue;
- (void)openBeside:(NSRect)anchor of:(NSView*)view;
- (void)cancel;
@end

@implementation QVMenuTarget {
    quorvel::Menu _items;
    quorvel::Queue* _queue;
    NSMenu* _menu;
    BOOL _isCancelled;
}

- (instancetype)initWithMenu:(quorvel::Menu)menu queue:(quorvel::Queue*)queue
{
    self = [super init];
    if (self) {
        _items = std::move(menu);
        _queue = queue;
        _menu = [[NSMenu alloc] initWithTitle:@""];
        _menu.autoenablesItems = NO;
        for (std::size_t index = 0; index < _items.size(); ++index)
            [_menu addItem:[self entryAt:index]];
    }
    return self;
}

- (NSMenuItem*)entryAt:(std::size_t)index
{
    const quorvel::MenuItem& item = _items[index];
    if (item.title.empty())
        return [NSMenuItem separatorItem];
    NSString* title = quorvel::toSystem(item.title);
    NSMenuItem* entry = [[NSMenuItem alloc] initWithTitle:title ? title : @""
                                                   action:@selector(choose:)
                                            keyEquivalent:@""];
    entry.target = self;
    entry.enabled = item.isEnabled;
    entry.tag = static_cast<NSInteger>(index);
    return entry;
}

- (void)openBeside:(NSRect)anchor of:(NSView*)view
{
    if (_isCancelled || !view.window)
        return;
    // Flipped: this is the upper left corner, where the menu of a bar at the bottom edge ends.
    const NSPoint above = NSMakePoint(NSMinX(anchor), NSMinY(anchor) - _menu.size.height);
    [_menu popUpMenuPositioningItem:nil atLocation:above inView:view];
}

- (void)cancel
{
    _isCancelled = YES;
    [_menu cancelTrackingWithoutAnimation];
}

- (void)choose:(NSMenuItem*)entry
{
    const auto index = static_cast<std::size_t>(entry.tag);
    if (!_isCancelled && index < _items.size() && _items[index].action)
        _queue->async(_items[index].action);
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

void MacSurfaces::popUpMenu(PanelSurface& surface, Menu menu, const Rect& anchor)
{
    [m_menu cancel];
    QVSurfaceView* view = static_cast<MacPanel&>(surface).view();
    QVMenuTarget* target = [[QVMenuTarget alloc] initWithMenu:std::move(menu) queue:&m_mainQueue];
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
