#pragma once

#include "Hosts/MacOS/Cocoa.h"
#include "Quorvel/Platform/AccessibleTree.h"

/// What has elements of the accessible tree below it: a surface's view, or such an element.
@protocol QVAccessibleParent <NSObject>
/// As it is now; null once it has gone.
- (quorvel::AccessibleElement*)accessibleSource;
- (NSView*)accessibleView;
@end

/// One element of a surface as assistive programs see it. It is looked up anew at each question, by
/// the identifiers on the way to it, so it may be kept for longer than the view that it shows.
@interface QVAccessibleElement : NSAccessibilityElement <QVAccessibleParent>
- (instancetype)initWithIdentifier:(const std::string&)identifier
                            parent:(id<QVAccessibleParent>)parent;
- (const std::string&)identifier;
/// Posts what differs from what was posted before, here and below.
- (void)announceChanges;
@end

/// The elements below a view or an element, made when somebody asks; the same object for the same
/// identifier as long as it is there.
@interface QVAccessibleChildren : NSObject
- (instancetype)initWithParent:(id<QVAccessibleParent>)parent;
- (NSArray<QVAccessibleElement*>*)elements;
/// The deepest one there, in the coordinates of the screen.
- (QVAccessibleElement*)elementAtPoint:(NSPoint)point;
/// The one that has the keyboard, here or below.
- (QVAccessibleElement*)focusedElement;
/// Posts which came and went, and what differs in the others. Nothing if nobody has asked for them.
- (void)announceChanges;
@end
