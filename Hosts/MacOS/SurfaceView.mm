#include "Hosts/MacOS/SurfaceView.h"

#include "Hosts/MacOS/Conversions.h"
#include "Hosts/MacOS/CoreGraphicsCanvas.h"
#include "Hosts/MacOS/KeyEvents.h"
#include "Hosts/MacOS/Rules/DropOperation.h"
#include "Hosts/MacOS/Rules/KeyboardSession.h"
#include "Hosts/MacOS/Rules/PointerSession.h"
#include "Hosts/MacOS/Rules/ScrollTranslation.h"

using quorvel::DropAction;
using quorvel::PointerSession;

namespace {

static_assert(quorvel::scroll::kBegan == NSEventPhaseBegan);
static_assert(quorvel::scroll::kStationary == NSEventPhaseStationary);
static_assert(quorvel::scroll::kChanged == NSEventPhaseChanged);
static_assert(quorvel::scroll::kEnded == NSEventPhaseEnded);
static_assert(quorvel::scroll::kCancelled == NSEventPhaseCancelled);
static_assert(quorvel::scroll::kMayBegin == NSEventPhaseMayBegin);
static_assert(NSEventPhaseNone == 0);

static_assert(quorvel::drag::kCopy == NSDragOperationCopy);
static_assert(quorvel::drag::kLink == NSDragOperationLink);
static_assert(quorvel::drag::kGeneric == NSDragOperationGeneric);
static_assert(quorvel::drag::kPrivate == NSDragOperationPrivate);
static_assert(quorvel::drag::kMove == NSDragOperationMove);
static_assert(quorvel::drag::kDelete == NSDragOperationDelete);

/// The program is never the active one, and what it shows changes rarely: the system would let it
/// nap.
quorvel::Subscription keepAwake()
{
    id<NSObject> activity = [NSProcessInfo.processInfo
        beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                          reason:@"The pointer is over a bar"];
    return quorvel::Subscription{std::shared_ptr<void>{
        (__bridge_retained void*)activity, [](void* object) {
            [NSProcessInfo.processInfo endActivity:(__bridge_transfer id<NSObject>)object];
        }}};
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
    const quorvel::Published<quorvel::Appearance>* _appearance;
    std::unique_ptr<PointerSession> _pointer;
    NSTrackingArea* _trackingArea;
}

@synthesize accessibleChildren = _accessibleChildren;

- (instancetype)initWithFrame:(NSRect)frame
                       client:(quorvel::SurfaceClient*)client
                      context:(const quorvel::SurfaceContext&)context
{
    self = [super initWithFrame:frame];
    if (self) {
        _client = client;
        _appearance = &context.application.appearance();
        _pointer = std::make_unique<PointerSession>(*client, context.mainQueue, keepAwake);
        self.wantsLayer = YES;
        self.layerContentsRedrawPolicy = NSViewLayerContentsRedrawOnSetNeedsDisplay;
        self.autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
        [self registerForDraggedTypes:@[ NSPasteboardTypeFileURL ]];
    }
    return self;
}

- (void)detach
{
    [self losePointer];
    _client = nullptr;
    _keyboard = nullptr;
    _pointer.reset();
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
    const auto direction = _appearance->value().isRightToLeft
        ? quorvel::LayoutDirection::rightToLeft
        : quorvel::LayoutDirection::leftToRight;
    quorvel::CoreGraphicsCanvas canvas{context, self.window.backingScaleFactor, direction};
    _client->paint(canvas, quorvel::fromSystem(damage));
    CGContextRestoreGState(context);
}

- (void)losePointer
{
    if (_pointer)
        _pointer->surfaceDidGo();
}

- (quorvel::Point)placeOf:(NSEvent*)event
{
    return quorvel::fromSystem([self convertPoint:event.locationInWindow fromView:nil]);
}

- (void)dragPointer:(NSEvent*)event
{
    if (_pointer)
        _pointer->dragged([self placeOf:event], quorvel::modifiersOf(event));
}

- (void)press:(NSInteger)button of:(NSEvent*)event
{
    if (_pointer)
        _pointer->pressed(button, [self placeOf:event], quorvel::modifiersOf(event));
}

- (void)release:(NSInteger)button of:(NSEvent*)event
{
    if (_pointer)
        _pointer->released(button, [self placeOf:event], quorvel::modifiersOf(event));
}

- (void)mouseEntered:(NSEvent*)event
{
    if (_pointer)
        _pointer->entered([self placeOf:event]);
}

- (void)mouseExited:(NSEvent*)event
{
    if (_pointer)
        _pointer->exited([self placeOf:event]);
}

- (void)mouseMoved:(NSEvent*)event
{
    if (_pointer)
        _pointer->moved([self placeOf:event], quorvel::modifiersOf(event));
}

- (void)mouseDragged:(NSEvent*)event
{
    [self dragPointer:event];
}

- (void)rightMouseDragged:(NSEvent*)event
{
    [self dragPointer:event];
}

- (void)otherMouseDragged:(NSEvent*)event
{
    [self dragPointer:event];
}

- (void)mouseDown:(NSEvent*)event
{
    [self press:PointerSession::kLeft of:event];
}

- (void)mouseUp:(NSEvent*)event
{
    [self release:PointerSession::kLeft of:event];
}

- (void)rightMouseDown:(NSEvent*)event
{
    [self press:PointerSession::kRight of:event];
}

- (void)rightMouseUp:(NSEvent*)event
{
    [self release:PointerSession::kRight of:event];
}

- (void)otherMouseDown:(NSEvent*)event
{
    [self press:event.buttonNumber of:event];
}

- (void)otherMouseUp:(NSEvent*)event
{
    [self release:event.buttonNumber of:event];
}

- (BOOL)acceptsFirstResponder
{
    return _keyboard && _keyboard->isWanted();
}

- (void)keyDown:(NSEvent*)event
{
    const bool isAsked = _client && _keyboard && _keyboard->isHeld() && !self.isAskedBefore;
    if (!isAsked || !_client->keyPressed(quorvel::keyEventOf(event)))
        [super keyDown:event];
}

- (NSDragOperation)drag:(id<NSDraggingInfo>)drag action:(DropAction)action
{
    const NSDragOperation operation = quorvel::dropOperation(drag.draggingSourceOperationMask);
    if (!_client || operation == NSDragOperationNone)
        return NSDragOperationNone;
    const NSPoint location = [self convertPoint:drag.draggingLocation fromView:nil];
    const bool isTaken = _client->dropEvent({action, quorvel::fromSystem(location),
        action == DropAction::dropped ? pathsOf(drag) : std::vector<std::string>{}});
    return isTaken ? operation : NSDragOperationNone;
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
    if (_client)
        _client->scrollEvent(quorvel::scrollEventOf({.location = [self placeOf:event],
            .deltaX = event.scrollingDeltaX,
            .deltaY = event.scrollingDeltaY,
            .hasPreciseDeltas = static_cast<bool>(event.hasPreciseScrollingDeltas),
            .isDirectionInverted = static_cast<bool>(event.directionInvertedFromDevice),
            .phase = event.phase,
            .momentumPhase = event.momentumPhase}));
}

@end
