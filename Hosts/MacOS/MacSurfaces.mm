#include "Hosts/MacOS/MacSurfaces.h"

#include "Hosts/MacOS/Conversions.h"
#include "Hosts/MacOS/KeyEvents.h"
#include "Hosts/MacOS/MacPanel.h"
#include "Hosts/MacOS/MacTextField.h"
#include "Hosts/MacOS/Rules/PointerSession.h"

static_assert(quorvel::MenuSession::kKeyDown == NSEventTypeKeyDown);

/// The system's menu of a session.
@interface QVMenuTarget : NSObject
- (instancetype)initWithMenu:(const quorvel::Menu&)menu
                     session:(std::shared_ptr<quorvel::MenuSession>)session;
/// Returns when it has gone.
- (quorvel::MenuEnding)openBeside:(NSRect)anchor of:(NSView*)view;
- (void)cancel;
@end

@implementation QVMenuTarget {
    std::shared_ptr<quorvel::MenuSession> _session;
    NSMenu* _menu;
}

- (instancetype)initWithMenu:(const quorvel::Menu&)menu
                     session:(std::shared_ptr<quorvel::MenuSession>)session
{
    self = [super init];
    if (self) {
        _session = std::move(session);
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
    entry.tag = static_cast<NSInteger>(_session->add(item.action));
    if (item.keys) {
        entry.keyEquivalent = quorvel::keyEquivalentOf(item.keys->key);
        entry.keyEquivalentModifierMask = item.keys->modifiers;
    }
    if (!item.submenu.empty())
        entry.submenu = [self makeMenu:item.submenu];
    return entry;
}

- (quorvel::MenuEnding)openBeside:(NSRect)anchor of:(NSView*)view
{
    if (!view.window)
        return quorvel::MenuEnding::dismissed;
    // Flipped: this is the upper left corner, where the menu of a bar at the bottom edge ends.
    const NSPoint above = NSMakePoint(NSMinX(anchor), NSMinY(anchor) - _menu.size.height);
    const bool isChosen = [_menu popUpMenuPositioningItem:nil atLocation:above inView:view];
    return quorvel::MenuSession::endingOf(isChosen, NSApp.currentEvent.type);
}

- (void)cancel
{
    [_menu cancelTrackingWithoutAnimation];
}

- (void)choose:(NSMenuItem*)entry
{
    _session->choose(static_cast<std::size_t>(entry.tag));
}

@end

namespace quorvel {

namespace {

/// A local monitor hears of a press before the window does, and of none that a menu takes.
Subscription monitorEvents(NSEventMask mask, PointerScope scope, void (^handler)(NSEvent*))
{
    id monitor = nil;
    if (scope == PointerScope::ownWindows) {
        monitor = [NSEvent addLocalMonitorForEventsMatchingMask:mask
                                                        handler:^NSEvent*(NSEvent* event) {
                                                            handler(event);
                                                            return event;
                                                        }];
    } else {
        monitor = [NSEvent addGlobalMonitorForEventsMatchingMask:mask handler:handler];
    }
    if (!monitor)
        return {};
    return Subscription{std::shared_ptr<void>{(__bridge_retained void*)monitor,
        [](void* object) { [NSEvent removeMonitor:(__bridge_transfer id)object]; }}};
}

/// Global, top-left origin.
Point pointerLocation()
{
    const NSPoint location = NSEvent.mouseLocation;
    return {location.x, NSMaxY(NSScreen.screens.firstObject.frame) - location.y};
}

}

MacSurfaces::MacSurfaces(const SurfaceContext& context)
    : m_context(context)
    , m_menu(context.application.willTerminate)
{
}

std::unique_ptr<PanelSurface> MacSurfaces::createPanel(
    const PanelOptions& options, SurfaceClient& client)
{
    return std::make_unique<MacPanel>(m_context, options, client);
}

Subscription MacSurfaces::monitorPointer(PointerScope scope, std::function<void()> handler)
{
    return monitorEvents(NSEventMaskMouseMoved, scope, ^(NSEvent*) { handler(); });
}

Subscription MacSurfaces::monitorPresses(PointerScope scope, PressHandler handler)
{
    const NSEventMask presses
        = NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown | NSEventMaskOtherMouseDown;
    return monitorEvents(presses, scope, ^(NSEvent* event) {
        handler(pointerLocation(),
            PointerSession::meaningOfPress(event.buttonNumber, modifiersOf(event)));
    });
}

std::unique_ptr<NativeTextField> MacSurfaces::createTextField(
    PanelSurface& surface, NativeTextFieldClient& client)
{
    return std::make_unique<MacTextField>(static_cast<MacPanel&>(surface).view(), client);
}

void MacSurfaces::popUpMenu(
    PanelSurface& surface, Menu menu, const Rect& anchor, std::function<void(MenuEnding)> onClosed)
{
    QVSurfaceView* view = static_cast<MacPanel&>(surface).view();
    const auto session = std::make_shared<MenuSession>(m_context.mainQueue, std::move(onClosed));
    QVMenuTarget* target = [[QVMenuTarget alloc] initWithMenu:menu session:session];
    m_menuTarget = target;
    const NSRect place = toSystem(anchor);
    dispatch_block_t show = ^{
        session->run(
            [&] {
                [view losePointer]; // a menu takes the release of the press that opened it
                return [target openBeside:place of:view];
            },
            [target] { [target cancel]; });
    };
    // An open menu runs a loop of its own inside the call. Begun from the main queue that would
    // hold up all further work of the queue, so it begins from the run loop.
    m_menu.open(session, [show] {
        CFRunLoopPerformBlock(CFRunLoopGetMain(), kCFRunLoopCommonModes, show);
        CFRunLoopWakeUp(CFRunLoopGetMain());
    });
}

}
