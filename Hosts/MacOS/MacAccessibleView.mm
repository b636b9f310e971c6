#include "Hosts/MacOS/Conversions.h"
#include "Hosts/MacOS/MacAccessibleElement.h"
#include "Hosts/MacOS/SurfaceView.h"

/// The view is the element at the root of its surface's tree.
@implementation QVSurfaceView (Accessible)

- (BOOL)isAccessibilityElement
{
    return [self accessibleSource] != nullptr;
}

- (NSAccessibilityRole)accessibilityRole
{
    return NSAccessibilityGroupRole;
}

- (NSString*)accessibilityLabel
{
    quorvel::AccessibleElement* source = [self accessibleSource];
    return source ? quorvel::toSystem(source->accessibleState().name) : nil;
}

/// The views leave out what a control of the system stands for; that one lies over them.
- (NSArray*)accessibilityChildren
{
    NSArray* elements = [self.accessibleChildren elements];
    return self.subviews.count == 0
        ? elements
        : [elements arrayByAddingObjectsFromArray:NSAccessibilityUnignoredChildren(self.subviews)];
}

- (NSView*)systemControlAtPoint:(NSPoint)point
{
    for (NSView* control in self.subviews) {
        if (!control.hidden && NSPointInRect(point, control.accessibilityFrame))
            return control;
    }
    return nil;
}

- (id)accessibilityHitTest:(NSPoint)point
{
    if (NSView* control = [self systemControlAtPoint:point])
        return [control accessibilityHitTest:point];
    QVAccessibleElement* deepest = [self.accessibleChildren elementAtPoint:point];
    return deepest ? deepest : self;
}

- (id)accessibilityFocusedUIElement
{
    QVAccessibleElement* focused = [self.accessibleChildren focusedElement];
    return focused ? focused : self;
}

/// The views may be in the middle of a change now, and there may be more of them in this turn.
- (void)accessibleTreeDidChange
{
    if (self.willAnnounceChanges)
        return;
    self.willAnnounceChanges = YES;
    __weak QVSurfaceView* weakSelf = self;
    dispatch_async(dispatch_get_main_queue(), ^{
        QVSurfaceView* view = weakSelf;
        view.willAnnounceChanges = NO;
        [view.accessibleChildren announceChanges];
    });
}

@end
