#include "Hosts/MacOS/MacPanel.h"

#include "Hosts/MacOS/Conversions.h"
#include "Hosts/MacOS/System/MacWindowServer.h"

@interface QVPanel : NSPanel
@property (nonatomic) BOOL mayBecomeKey;
@property (nonatomic, copy) void (^onKeyChanged)(BOOL isKey);
@end

@implementation QVPanel

// A borderless window could not by itself.
- (BOOL)canBecomeKeyWindow
{
    return self.mayBecomeKey;
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

- (BOOL)canBecomeMainWindow
{
    return NO;
}

// The system would push the frame off the strip that the Dock and the menu bar keep for themselves.
- (NSRect)constrainFrameRect:(NSRect)frame toScreen:(NSScreen*)screen
{
    return frame;
}

@end

namespace quorvel {

namespace {

CGWindowLevelKey levelOf(PanelKind kind)
{
    switch (kind) {
    case PanelKind::fullscreenProxy:
        return kCGNormalWindowLevelKey;
    case PanelKind::popup:
        return kCGPopUpMenuWindowLevelKey;
    case PanelKind::bar:
        break;
    }
    return kCGDockWindowLevelKey;
}

NSWindowCollectionBehavior behaviorOf(PanelKind kind)
{
    if (kind == PanelKind::popup)
        return NSWindowCollectionBehaviorCanJoinAllSpaces | NSWindowCollectionBehaviorTransient
            | NSWindowCollectionBehaviorIgnoresCycle
            | NSWindowCollectionBehaviorFullScreenAuxiliary;
    // Stationary: Mission Control hides windows above the normal level otherwise.
    return NSWindowCollectionBehaviorStationary | NSWindowCollectionBehaviorIgnoresCycle
        | (kind == PanelKind::fullscreenProxy ? NSWindowCollectionBehaviorFullScreenAuxiliary
                                              : NSWindowCollectionBehaviorFullScreenNone);
}

QVPanel* makePanel(const PanelOptions& options)
{
    // The server reads this part of the style only when the window is made.
    const NSWindowStyleMask style
        = NSWindowStyleMaskBorderless | NSWindowStyleMaskNonactivatingPanel;
    QVPanel* panel = [[QVPanel alloc] initWithContentRect:NSMakeRect(0, 0, 1, 1)
                                                styleMask:style
                                                  backing:NSBackingStoreBuffered
                                                    defer:NO];
    panel.releasedWhenClosed = NO;
    panel.hidesOnDeactivate = NO; // the program is never the active one
    panel.becomesKeyOnlyIfNeeded = YES;
    panel.opaque = NO;
    panel.backgroundColor = NSColor.clearColor;
    panel.hasShadow = NO;
    panel.movable = NO;
    panel.acceptsMouseMovedEvents = YES;
    panel.animationBehavior = NSWindowAnimationBehaviorNone;
    const bool isProxy = options.kind == PanelKind::fullscreenProxy;
    panel.level = CGWindowLevelForKey(levelOf(options.kind));
    panel.collectionBehavior = behaviorOf(options.kind);
    // Set even to NO, it would end the pass of clicks through what is transparent.
    if (isProxy)
        panel.ignoresMouseEvents = YES;
    if (NSString* title = toSystem(options.title))
        panel.title = title;
    return panel;
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

MacPanel::MacPanel(
    const MacWindowServer& windowServer, const PanelOptions& options, SurfaceClient& client)
    : m_windowServer(windowServer)
    , m_space(options.space)
    , m_isPopup(options.kind == PanelKind::popup)
    , m_panel(makePanel(options))
    , m_view([[QVSurfaceView alloc] initWithFrame:m_panel.contentView.bounds client:&client])
{
    [m_panel.contentView addSubview:m_view];
    QVSurfaceView* view = m_view;
    m_panel.onKeyChanged = ^(BOOL isKey) { [view panelIsKey:isKey]; };
}

MacPanel::~MacPanel()
{
    m_panel.onKeyChanged = nil;
    [m_view detach];
    [m_panel orderOut:nil];
    [m_panel close];
}

void MacPanel::setFrame(const Rect& frame) { [m_panel setFrame:toSystem(frame) display:YES]; }

Rect MacPanel::frame() const { return fromSystem(m_panel.frame); }

void MacPanel::orderFront()
{
    [m_panel orderFrontRegardless];
    // The number is that of the server's window only while there is one.
    if (!m_isPopup && m_panel.windowNumber > 0)
        m_windowServer.moveOwnWindow(
            WindowID{static_cast<std::uint32_t>(m_panel.windowNumber)}, m_space);
}

void MacPanel::orderOut()
{
    [m_view cancelPress];
    [m_panel orderOut:nil];
}

void MacPanel::setCanBecomeKey(bool canBecomeKey) { m_panel.mayBecomeKey = canBecomeKey; }

void MacPanel::makeKeyAndOrderFront()
{
    orderFront();
    [m_panel makeKeyWindow];
}

bool MacPanel::isVisible() const { return m_panel.visible && m_panel.onActiveSpace; }

double MacPanel::scale() const { return m_panel.backingScaleFactor; }

void MacPanel::invalidate(const Rect& rect) { [m_view setNeedsDisplayInRect:toSystem(rect)]; }

Duration MacPanel::frameInterval() const
{
    NSScreen* screen = m_panel.screen ? m_panel.screen : NSScreen.mainScreen;
    const NSInteger rate = screen.maximumFramesPerSecond;
    return seconds(1.0 / static_cast<double>(rate > 0 ? rate : 60));
}

/// A panel that does not activate its program can be the key window, and the active program remains
/// what it is.
bool MacPanel::takeKeyboard()
{
    m_view.wantsKeyboard = YES;
    m_panel.mayBecomeKey = YES;
    [m_panel makeFirstResponder:m_view];
    if (m_panel.keyWindow)
        [m_view panelIsKey:YES];
    else
        [m_panel makeKeyWindow];
    return m_panel.keyWindow;
}

void MacPanel::releaseKeyboard()
{
    if (!m_view.wantsKeyboard)
        return;
    [m_view panelIsKey:NO];
    m_panel.mayBecomeKey = NO;
    if (!m_panel.keyWindow)
        return;
    // A window gives the keyboard up only when it goes off the screen.
    [m_panel orderOut:nil];
    orderFront();
}

void MacPanel::setOpacity(double opacity) { m_panel.alphaValue = opacity; }

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
