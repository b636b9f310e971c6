#pragma once

#include "Hosts/MacOS/Cocoa.h"
#include "Hosts/MacOS/MacAccessibleElement.h"
#include "Hosts/MacOS/SurfaceContext.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {
class KeyboardSession;
}

/// Shows a surface client and hands it the events of its rectangle; the program is never the active
/// one, so the view asks for what inactive programs do not get by themselves.
@interface QVSurfaceView : NSView <QVAccessibleParent>
- (instancetype)initWithFrame:(NSRect)frame
                       client:(quorvel::SurfaceClient*)client
                      context:(const quorvel::SurfaceContext&)context;
/// No call reaches the client any more.
- (void)detach;
/// The panel or its space goes off the screen, or a menu takes the pointer.
- (void)losePointer;
/// The panel's; says whether keys are the client's.
@property (nonatomic) const quorvel::KeyboardSession* keyboard;
/// Made when an assistive program first asks for them.
@property (nonatomic, readonly) QVAccessibleChildren* accessibleChildren;
@property (nonatomic) BOOL willAnnounceChanges;
@end

@interface QVSurfaceView (Accessible)
- (void)accessibleTreeDidChange;
@end
