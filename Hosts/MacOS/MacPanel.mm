#include "Hosts/MacOS/MacPanel.h"

#include "Hosts/MacOS/Conversions.h"
#include "Hosts/MacOS/Focus.h"
#include "Hosts/MacOS/KeyEvents.h"
#include "Hosts/MacOS/Rules/KeyRoute.h"
#include "Hosts/MacOS/Rules/PanelSlide.h"
#include "Hosts/MacOS/Rules/PanelTraits.h"
#include "Hosts/MacOS/StandardKeys.h"
#include "Quorvel/Platform/Workspace.h"

@interface QVPanel : NSPanel
@property (nonatomic, copy) BOOL (^mayBecomeKey)(void);
@property (nonatomic, copy) void (^onKeyChanged)(BOOL isKey);
/// Nil for a panel that the user cannot close.
@property (nonatomic, copy) void (^onCloseWanted)(void);
/// What the pointer looks like here, whatever a view or another panel says; nil: nobody cares.
@property (nonatomic) NSCursor* cursor;
@end

static BOOL s_panelsRefuseKey = NO;

@implementation QVPanel

// A borderless window could not by itself.
- (BOOL)canBecomeKeyWindow
{
    return !s_panelsRefuseKey && self.mayBecomeKey && self.mayBecomeKey();
}

- (void)becomeKeyWindow
{
    [super becomeKeyWindow];
    if (self.onKeyChanged)
        self.onKeyChanged(YES);
}

- (void)resignKeyWindow
{
    [super resignKeyWindow];
    if (self.onKeyChanged)
        self.onKeyChanged(NO);
}

// Whoever is asked decides what becomes of it.
- (BOOL)windowShouldClose:(NSWindow*)sender
{
    if (self.onCloseWanted)
        self.onCloseWanted();
    return NO;
}

- (BOOL)performKeyEquivalent:(NSEvent*)event
{
    return [super performKeyEquivalent:event]
        || quorvel::handleStandardKeyEquivalent(event, self, self.onCloseWanted);
}

- (BOOL)canBecomeMainWindow
{
    return NO;
}

- (void)sendEvent:(NSEvent*)event
{
    const NSEventMask pointer = NSEventMaskMouseMoved | NSEventMaskMouseEntered
        | NSEventMaskMouseExited | NSEventMaskCursorUpdate | NSEventMaskLeftMouseDown
        | NSEventMaskLeftMouseUp | NSEventMaskLeftMouseDragged | NSEventMaskRightMouseDown
        | NSEventMaskRightMouseUp | NSEventMaskRightMouseDragged | NSEventMaskOtherMouseDown
        | NSEventMaskOtherMouseUp | NSEventMaskOtherMouseDragged | NSEventMaskScrollWheel;
    const bool isPointer = NSEventMaskFromType(event.type) & pointer;
    if (isPointer)
        [self.cursor set];
    [super sendEvent:event];
    if (isPointer)
        [self.cursor set];
}

// The system would push the frame off the strip that the Dock and the menu bar keep for themselves.
- (NSRect)constrainFrameRect:(NSRect)frame toScreen:(NSScreen*)screen
{
    const bool isTitled = self.styleMask & NSWindowStyleMaskTitled;
    return isTitled ? [super constrainFrameRect:frame toScreen:screen] : frame;
}

@end

namespace quorvel {

namespace {

static_assert(behavior::kCanJoinAllSpaces == NSWindowCollectionBehaviorCanJoinAllSpaces);
static_assert(behavior::kMoveToActiveSpace == NSWindowCollectionBehaviorMoveToActiveSpace);
static_assert(behavior::kManaged == NSWindowCollectionBehaviorManaged);
static_assert(behavior::kTransient == NSWindowCollectionBehaviorTransient);
static_assert(behavior::kStationary == NSWindowCollectionBehaviorStationary);
static_assert(behavior::kIgnoresCycle == NSWindowCollectionBehaviorIgnoresCycle);
static_assert(behavior::kFullScreenPrimary == NSWindowCollectionBehaviorFullScreenPrimary);
static_assert(behavior::kFullScreenAuxiliary == NSWindowCollectionBehaviorFullScreenAuxiliary);
static_assert(behavior::kFullScreenNone == NSWindowCollectionBehaviorFullScreenNone);
static_assert(behavior::kPrimary == NSWindowCollectionBehaviorPrimary);
static_assert(behavior::kAuxiliary == NSWindowCollectionBehaviorAuxiliary);
static_assert(
    behavior::kCanJoinAllApplications == NSWindowCollectionBehaviorCanJoinAllApplications);
static_assert(static_cast<int>(PanelTraits::Level::normal) == kCGNormalWindowLevelKey);
static_assert(static_cast<int>(PanelTraits::Level::floating) == kCGFloatingWindowLevelKey);
static_assert(static_cast<int>(PanelTraits::Level::dock) == kCGDockWindowLevelKey);
static_assert(static_cast<int>(PanelTraits::Level::popUpMenu) == kCGPopUpMenuWindowLevelKey);

void makeBare(QVPanel* panel)
{
    panel.becomesKeyOnlyIfNeeded = YES;
    panel.opaque = NO;
    panel.backgroundColor = NSColor.clearColor;
    panel.hasShadow = NO;
    panel.movable = NO;
    panel.animationBehavior = NSWindowAnimationBehaviorNone;
}

QVPanel* makePanel(const PanelTraits& traits)
{
    // The server reads this part of the style only when the window is made.
    const NSWindowStyleMask style = traits.isTitled
        ? NSWindowStyleMaskTitled | NSWindowStyleMaskClosable
        : NSWindowStyleMaskBorderless | NSWindowStyleMaskNonactivatingPanel;
    QVPanel* panel = [[QVPanel alloc] initWithContentRect:NSMakeRect(0, 0, 1, 1)
                                                styleMask:style
                                                  backing:NSBackingStoreBuffered
                                                    defer:NO];
    panel.releasedWhenClosed = NO;
    panel.hidesOnDeactivate = NO; // the program is never the active one
    panel.canHide = NO; // "Hide Others" would take it off the screen
    panel.acceptsMouseMovedEvents = YES;
    if (!traits.isTitled)
        makeBare(panel);
    panel.level = CGWindowLevelForKey(static_cast<CGWindowLevelKey>(traits.level));
    panel.collectionBehavior = traits.collectionBehavior;
    if (traits.ignoresMouse)
        panel.ignoresMouseEvents = *traits.ignoresMouse;
    return panel;
}

std::optional<SpaceID> ownSpace(const PanelOptions& options)
{
    return PanelTraits::of(options.kind).hasOwnSpace ? std::optional{options.space} : std::nullopt;
}

NSVisualEffectView* makeBlur(NSRect frame)
{
    NSVisualEffectView* blur = [[NSVisualEffectView alloc] initWithFrame:frame];
    blur.material = NSVisualEffectMaterialHUDWindow;
    blur.blendingMode = NSVisualEffectBlendingModeBehindWindow;
    blur.state = NSVisualEffectStateActive; // following the window it would look switched off
    blur.autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
    return blur;
}

}

// MARK: The system's panel

void MacPanel::Calls::orderIn() { [m_owner.m_panel orderFrontRegardless]; }

void MacPanel::Calls::orderOut() { [m_owner.m_panel orderOut:nil]; }

void MacPanel::Calls::setUnseen(bool isUnseen)
{
    m_owner.m_panel.alphaValue = isUnseen ? 0 : m_opacity;
}

void MacPanel::Calls::setOpacity(double opacity)
{
    m_opacity = opacity;
    m_owner.m_panel.alphaValue = opacity;
}

std::optional<WindowID> MacPanel::Calls::number() const
{
    // It is that of the server's window only while there is one.
    const NSInteger number = m_owner.m_panel.windowNumber;
    return number > 0 ? std::optional{WindowID{static_cast<std::uint32_t>(number)}} : std::nullopt;
}

/// A panel that does not activate its program can be the key window, and the active program remains
/// what it is.
void MacPanel::Calls::becomeKey() { [m_owner.m_panel makeKeyWindow]; }

bool MacPanel::Calls::isKey() const { return m_owner.m_panel.keyWindow; }

bool MacPanel::Calls::isVisible() const { return m_owner.isVisible(); }

void MacPanel::Calls::directKeysToContent() { [m_owner.m_panel makeFirstResponder:m_owner.m_view]; }

void MacPanel::Calls::setClientSeesKeysFirst(bool doesSee)
{
    m_owner.stopMonitoringKeys();
    if (doesSee)
        m_owner.monitorKeys();
}

void MacPanel::Calls::activateProgram() { [NSApp activateIgnoringOtherApps:YES]; }

void MacPanel::Calls::handBackActivation() { handBackFocus(); }

/// A window gives the keyboard up only when it goes off the screen, so one that nobody sees takes
/// it and goes.
void MacPanel::Calls::resignKey()
{
    QVPanel* taker = makePanel(PanelTraits::of(PanelKind::popup));
    taker.alphaValue = 0;
    taker.ignoresMouseEvents = YES;
    taker.mayBecomeKey = ^{ return YES; };
    [taker makeKeyAndOrderFront:nil];
    // Or it would hand it to the next panel of the program that takes it.
    s_panelsRefuseKey = YES;
    [taker orderOut:nil];
    s_panelsRefuseKey = NO;
    [taker close];
}

// MARK: MacPanel

MacPanel::MacPanel(
    const SurfaceContext& context, const PanelOptions& options, SurfaceClient& client)
    : m_client(client)
    , m_panel(makePanel(PanelTraits::of(options.kind)))
    , m_view([[QVSurfaceView alloc] initWithFrame:m_panel.contentView.bounds
                                           client:&client
                                          context:context])
    , m_calls(*this)
    , m_place(context.windowServer, m_calls, ownSpace(options))
    , m_keyboard(m_calls, client, context.mainQueue, PanelTraits::of(options.kind).keys)
    , m_activeSpaceChange(
          context.workspace.activeSpaceDidChange.subscribe([this] { activeSpaceDidChange(); }))
{
    if (NSString* title = toSystem(options.title))
        m_panel.title = title;
    [m_panel.contentView addSubview:m_view];
    m_view.keyboard = &m_keyboard;
    m_panel.mayBecomeKey = ^BOOL { return m_keyboard.mayBecomeKey(); };
    if (PanelTraits::of(options.kind).isClosable)
        m_panel.onCloseWanted = ^{ m_client.closeRequested(); };
    // It may do away with this.
    m_panel.onKeyChanged = ^(BOOL isKey) { m_keyboard.keyDidChange(isKey); };
}

MacPanel::~MacPanel()
{
    stopMonitoringKeys();
    m_panel.onKeyChanged = nil;
    m_panel.mayBecomeKey = nil;
    m_panel.onCloseWanted = nil;
    [m_view detach];
    [m_view removeFromSuperview]; // a menu that waits for its turn has nothing to open over
    [m_panel orderOut:nil];
    [m_panel close];
}

void MacPanel::setFrame(const Rect& frame)
{
    m_frame = frame;
    if (m_slide > 0)
        return placeSlid();
    [m_panel setFrame:[m_panel frameRectForContentRect:toSystem(frame)] display:YES];
}

Rect MacPanel::frame() const
{
    if (m_slide > 0)
        return m_frame;
    return fromSystem(
        [m_panel contentRectForFrameRect:m_panel.frame]); // the user may have moved it
}

void MacPanel::setSlide(double share)
{
    if (m_slide == 0)
        m_frame = frame();
    m_slide = share;
    placeSlid();
}

void MacPanel::placeSlid()
{
    const auto slid = PanelSlide::of(m_frame, m_slide);
    m_panel.contentView.autoresizesSubviews = NO;
    [m_panel setFrame:toSystem(slid.panel) display:YES];
    m_view.frame = toSystem(slid.content);
    m_blur.frame = toSystem(slid.content);
    m_panel.contentView.autoresizesSubviews = YES;
    if (!slid.isGone)
        return;
    releaseKeyboard();
    [m_view losePointer];
}

void MacPanel::orderFront() { m_place.orderFront(); }

void MacPanel::orderOut()
{
    [m_view losePointer];
    m_place.orderOut();
    m_keyboard.panelDidGo();
}

void MacPanel::activeSpaceDidChange()
{
    m_place.activeSpaceDidChange();
    if (!isVisible())
        [m_view losePointer];
}

void MacPanel::setCanBecomeKey(bool canBecomeKey) { m_keyboard.setCanBecomeKey(canBecomeKey); }

void MacPanel::makeKeyAndOrderFront() { m_keyboard.makeKeyAndOrderFront(m_place); }

bool MacPanel::isVisible() const { return m_panel.visible && m_panel.onActiveSpace; }

double MacPanel::scale() const { return m_panel.backingScaleFactor; }

void MacPanel::invalidate(const Rect& rect) { [m_view setNeedsDisplayInRect:toSystem(rect)]; }

Duration MacPanel::frameInterval() const
{
    NSScreen* screen = m_panel.screen ? m_panel.screen : NSScreen.mainScreen;
    const NSInteger rate = screen.maximumFramesPerSecond;
    return seconds(1.0 / static_cast<double>(rate > 0 ? rate : 60));
}

bool MacPanel::takeKeyboard() { return m_keyboard.take(); }

/// A field of the system would use the keys that are for the whole panel.
void MacPanel::monitorKeys()
{
    m_view.isAskedBefore = YES;
    auto* client = &m_client;
    m_keyMonitor = [NSEvent
        addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                     handler:^NSEvent*(NSEvent* event) {
                                         const KeyRoute route{.isForPanel = event.window == m_panel,
                                             .isPanelKey = static_cast<bool>(m_panel.keyWindow),
                                             .isComposing = isComposing()};
                                         const bool isUsed = route.asksClientFirst()
                                             && client->keyPressed(keyEventOf(event));
                                         return isUsed ? nil : event;
                                     }];
}

void MacPanel::stopMonitoringKeys()
{
    m_view.isAskedBefore = NO;
    if (m_keyMonitor)
        [NSEvent removeMonitor:m_keyMonitor];
    m_keyMonitor = nil;
}

bool MacPanel::isComposing() const
{
    NSResponder* responder = m_panel.firstResponder;
    return [responder conformsToProtocol:@protocol(NSTextInputClient)] &&
        [(id<NSTextInputClient>)responder hasMarkedText];
}

void MacPanel::setCursor(Cursor cursor)
{
    switch (cursor) {
    case Cursor::arrow:
        m_panel.cursor = NSCursor.arrowCursor;
    }
}

void MacPanel::releaseKeyboard() { m_keyboard.release(); }

void MacPanel::setOpacity(double opacity) { m_calls.setOpacity(opacity); }

void MacPanel::accessibleTreeDidChange() { [m_view accessibleTreeDidChange]; }

bool MacPanel::setBlursBehind(const std::optional<VisualEffect>& effect)
{
    if (effect && !m_blur) {
        m_blur = makeBlur(m_panel.contentView.bounds);
        [m_panel.contentView addSubview:m_blur positioned:NSWindowBelow relativeTo:m_view];
    } else if (!effect && m_blur) {
        [m_blur removeFromSuperview];
        m_blur = nil;
    }
    if (effect) {
        m_blur.material = static_cast<NSVisualEffectMaterial>(effect->material);
        m_blur.blendingMode = static_cast<NSVisualEffectBlendingMode>(effect->blendingMode);
        m_blur.state = static_cast<NSVisualEffectState>(effect->state);
        m_blur.alphaValue = effect->opacity;
    }
    return true;
}

}
