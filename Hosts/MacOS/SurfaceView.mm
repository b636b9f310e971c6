#include "Hosts/MacOS/SurfaceView.h"

#include <optional>

#include <Carbon/Carbon.h>

#include "Hosts/MacOS/Conversions.h"
#include "Hosts/MacOS/CoreGraphicsCanvas.h"

using quorvel::DropAction;
using quorvel::PointerAction;
using quorvel::PointerButton;

namespace {

PointerButton buttonOf(NSEvent* event)
{
    switch (event.type) {
    case NSEventTypeLeftMouseDown:
        // Control and a click have meant the other button since mice had one.
        return event.modifierFlags & NSEventModifierFlagControl ? PointerButton::secondary
                                                                : PointerButton::primary;
    case NSEventTypeRightMouseDown:
        return PointerButton::secondary;
    default:
        return event.buttonNumber == 2 ? PointerButton::middle : PointerButton::none;
    }
}

/// By place on the keyboard; what types no character is at the same place on all of them.
std::optional<quorvel::Key> keyOf(NSEvent* event)
{
    using quorvel::Key;
    switch (event.keyCode) {
    case kVK_LeftArrow:
        return Key::left;
    case kVK_RightArrow:
        return Key::right;
    case kVK_UpArrow:
        return Key::up;
    case kVK_DownArrow:
        return Key::down;
    case kVK_Home:
        return Key::home;
    case kVK_End:
        return Key::end;
    case kVK_Tab:
        return event.modifierFlags & NSEventModifierFlagShift ? Key::backTab : Key::tab;
    case kVK_Return:
    case kVK_ANSI_KeypadEnter:
        return Key::enter;
    case kVK_Space:
        return Key::space;
    case kVK_Escape:
        return Key::escape;
    default:
        return std::nullopt;
    }
}

std::vector<std::string> pathsOf(id<NSDraggingInfo> drag)
{
    NSArray<NSURL*>* urls =
        [drag.draggingPasteboard readObjectsForClasses:@[ NSURL.class ]
                                               options:@{
                                                   NSPasteboardURLReadingFileURLsOnlyKey : @YES
                                               }];
    std::vector<std::string> paths;
    for (NSURL* url in urls) {
        if (const char* path = url.fileSystemRepresentation)
            paths.emplace_back(path);
    }
    return paths;
}

}

@implementation QVSurfaceView {
    quorvel::SurfaceClient* _client;
    NSTrackingArea* _trackingArea;
    // The button of the press under way. What is held at its end may be another modifier.
    std::optional<PointerButton> _pressed;
    BOOL _hasKeyboard;
}

@synthesize accessibleChildren = _accessibleChildren;

- (instancetype)initWithFrame:(NSRect)frame client:(quorvel::SurfaceClient*)client
{
    self = [super initWithFrame:frame];
    if (self) {
        _client = client;
        self.wantsLayer = YES;
        self.layerContentsRedrawPolicy = NSViewLayerContentsRedrawOnSetNeedsDisplay;
        self.autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
        [self registerForDraggedTypes:@[ NSPasteboardTypeFileURL ]];
    }
    return self;
}

- (void)detach
{
    _client = nullptr;
}

- (quorvel::AccessibleElement*)accessibleSource
{
    return _client ? _client->accessibleRoot() : nullptr;
}

- (NSView*)accessibleView
{
    return self;
}

- (QVAccessibleChildren*)accessibleChildren
{
    if (!_accessibleChildren)
        _accessibleChildren = [[QVAccessibleChildren alloc] initWithParent:self];
    return _accessibleChildren;
}

- (BOOL)isFlipped
{
    return YES;
}

- (BOOL)isOpaque
{
    return NO;
}

- (BOOL)acceptsFirstMouse:(NSEvent*)event
{
    return YES;
}

- (void)updateTrackingAreas
{
    [super updateTrackingAreas];
    if (_trackingArea)
        [self removeTrackingArea:_trackingArea];
    const NSTrackingAreaOptions options = NSTrackingMouseEnteredAndExited | NSTrackingMouseMoved
        | NSTrackingActiveAlways | NSTrackingInVisibleRect;
    _trackingArea = [[NSTrackingArea alloc] initWithRect:NSZeroRect
                                                 options:options
                                                   owner:self
                                                userInfo:nil];
    [self addTrackingArea:_trackingArea];
}

- (void)setFrameSize:(NSSize)size
{
    const bool changes = !NSEqualSizes(size, self.frame.size);
    [super setFrameSize:size];
    if (!changes)
        return;
    self.needsDisplay = YES;
    if (_client)
        _client->surfaceDidResize(quorvel::fromSystem(self.bounds.size));
}

- (void)viewDidChangeBackingProperties
{
    [super viewDidChangeBackingProperties];
    self.needsDisplay = YES;
}

- (void)drawRect:(NSRect)dirtyRect
{
    CGContextRef context = NSGraphicsContext.currentContext.CGContext;
    // Since macOS 14 a view may be asked to draw outside its bounds.
    const NSRect damage = NSIntersectionRect(dirtyRect, self.bounds);
    if (!_client || !context || NSIsEmptyRect(damage))
        return;
    CGContextSaveGState(context);
    CGContextClipToRect(context, damage);
    CGContextClearRect(context, damage);
    quorvel::CoreGraphicsCanvas canvas{context, self.window.backingScaleFactor};
    _client->paint(canvas, quorvel::fromSystem(damage));
    CGContextRestoreGState(context);
}

- (void)send:(PointerAction)action event:(NSEvent*)event button:(PointerButton)button
{
    if (!_client)
        return;
    const NSPoint location = [self convertPoint:event.locationInWindow fromView:nil];
    _client->pointerEvent({action, quorvel::fromSystem(location), button});
}

- (void)press:(NSEvent*)event
{
    const PointerButton button = buttonOf(event);
    // The first button rules until it is let go.
    if (_pressed || button == PointerButton::none)
        return;
    _pressed = button;
    [self send:PointerAction::pressed event:event button:button];
}

- (void)release:(NSEvent*)event ifOneOf:(std::initializer_list<PointerButton>)buttons
{
    if (!_pressed || std::find(buttons.begin(), buttons.end(), *_pressed) == buttons.end())
        return;
    const PointerButton button = *_pressed;
    _pressed.reset();
    [self send:PointerAction::released event:event button:button];
}

- (void)cancelPress
{
    if (!_pressed)
        return;
    const PointerButton button = *_pressed;
    _pressed.reset();
    const NSPoint location = [self convertPoint:self.window.mouseLocationOutsideOfEventStream
                                       fromView:nil];
    if (_client)
        _client->pointerEvent({PointerAction::cancelled, quorvel::fromSystem(location), button});
}

- (void)move:(NSEvent*)event
{
    [self send:PointerAction::moved event:event button:_pressed.value_or(PointerButton::none)];
}

- (void)mouseEntered:(NSEvent*)event
{
    [self send:PointerAction::entered event:event button:PointerButton::none];
}

- (void)mouseExited:(NSEvent*)event
{
    [self send:PointerAction::exited event:event button:PointerButton::none];
}

- (void)mouseMoved:(NSEvent*)event
{
    [self move:event];
}

- (void)mouseDragged:(NSEvent*)event
{
    [self move:event];
}

- (void)rightMouseDragged:(NSEvent*)event
{
    [self move:event];
}

- (void)otherMouseDragged:(NSEvent*)event
{
    [self move:event];
}

- (void)mouseDown:(NSEvent*)event
{
    [self press:event];
}

- (void)rightMouseDown:(NSEvent*)event
{
    [self press:event];
}

- (void)otherMouseDown:(NSEvent*)event
{
    [self press:event];
}

- (void)mouseUp:(NSEvent*)event
{
    [self release:event ifOneOf:{PointerButton::primary, PointerButton::secondary}];
}

- (void)rightMouseUp:(NSEvent*)event
{
    [self release:event ifOneOf:{PointerButton::secondary}];
}

- (void)otherMouseUp:(NSEvent*)event
{
    [self release:event ifOneOf:{PointerButton::middle}];
}

- (BOOL)acceptsFirstResponder
{
    return self.wantsKeyboard;
}

- (void)panelIsKey:(BOOL)isKey
{
    const BOOL hasKeyboard = isKey && self.wantsKeyboard;
    if (!isKey)
        self.wantsKeyboard = NO;
    if (hasKeyboard == _hasKeyboard)
        return;
    _hasKeyboard = hasKeyboard;
    if (_client)
        _client->keyboardDidChange(hasKeyboard);
}

- (void)keyDown:(NSEvent*)event
{
    const auto key = keyOf(event);
    if (_client && _hasKeyboard && key)
        _client->keyPressed(*key);
    else
        [super keyDown:event];
}

- (NSDragOperation)drag:(id<NSDraggingInfo>)drag action:(DropAction)action
{
    if (!_client)
        return NSDragOperationNone;
    const NSPoint location = [self convertPoint:drag.draggingLocation fromView:nil];
    const bool isTaken = _client->dropEvent({action, quorvel::fromSystem(location),
        action == DropAction::dropped ? pathsOf(drag) : std::vector<std::string>{}});
    return isTaken ? NSDragOperationGeneric : NSDragOperationNone;
}

- (NSDragOperation)draggingEntered:(id<NSDraggingInfo>)drag
{
    return [self drag:drag action:DropAction::entered];
}

- (NSDragOperation)draggingUpdated:(id<NSDraggingInfo>)drag
{
    return [self drag:drag action:DropAction::moved];
}

- (void)draggingExited:(id<NSDraggingInfo>)drag
{
    if (_client)
        _client->dropEvent({DropAction::exited, {}, {}});
}

- (BOOL)performDragOperation:(id<NSDraggingInfo>)drag
{
    return [self drag:drag action:DropAction::dropped] != NSDragOperationNone;
}

- (void)scrollWheel:(NSEvent*)event
{
    // What rolls on after the fingers have gone would count as many steps.
    if (!_client || event.momentumPhase != NSEventPhaseNone)
        return;
    const NSPoint location = [self convertPoint:event.locationInWindow fromView:nil];
    _client->scrollEvent({quorvel::fromSystem(location), event.scrollingDeltaX,
        event.scrollingDeltaY, static_cast<bool>(event.directionInvertedFromDevice)});
}

@end
