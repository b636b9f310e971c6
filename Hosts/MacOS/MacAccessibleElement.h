#pragma once

#include "Hosts/MacOS/Cocoa.h"
#include "Quorvel/Platform/AccessibleTree.h"

/// An object with elements of the accessible tree below it: a surface's view, or such an element.
@protocol QVAccessibleParent <NSObject>
/// As it is now; null once it has gone.
- (quorvel::AccessibleElement*)accessibleSource;
- (NSView*)accessibleView;
@end

/// One element of a surface as assistive programs see it. It is looked up again for each question,
/// by the identifiers on the path to it, so it may be kept longer than the view that it stands for.
@interface QVAccessibleElement : NSAccessibilityElement <QVAccessibleParent>
- (instancetype)initWithIdentifier:(const std::string&)identifier
                            parent:(id<QVAccessibleParent>)parent;
- (const std::string&)identifier;
/// Has it read aloud if it is the selected one of a list: the keyboard is in a field meanwhile, so
/// nobody would hear which one Return opens.
- (void)announceSelection;
/// Posts whatever differs from what was posted before, here and below.
- (void)announceChanges;
@end

/// The elements below a view or an element, made on demand; the same object for the same identifier
/// as long as the element exists.
@interface QVAccessibleChildren : NSObject
- (instancetype)initWithParent:(id<QVAccessibleParent>)parent;
- (NSArray<QVAccessibleElement*>*)elements;
/// The deepest element at the point, in screen coordinates.
- (QVAccessibleElement*)elementAtPoint:(NSPoint)point;
/// The element with the keyboard, here or below.
- (QVAccessibleElement*)focusedElement;
/// Posts which elements came and went, and what changed in the others. Does nothing until the
/// elements have been asked for.
- (void)announceChanges;
@end
