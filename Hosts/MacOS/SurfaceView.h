#pragma once

#include "Hosts/MacOS/Cocoa.h"
#include "Hosts/MacOS/MacAccessibleElement.h"
#include "Hosts/MacOS/SurfaceContext.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {
class KeyboardSession;
}

/// Shows a surface client and passes it the events in its rectangle. The program is never the
/// active one, so the view requests the events that inactive programs do not get by default.
@interface QVSurfaceView : NSView <QVAccessibleParent>
- (instancetype)initWithFrame:(NSRect)frame
                       client:(quorvel::SurfaceClient*)client
                      context:(const quorvel::SurfaceContext&)context;
/// No further calls reach the client.
- (void)detach;
/// The panel or its space leaves the screen, or a menu takes the pointer.
- (void)losePointer;
/// The panel's session; says whether keys go to the client.
@property (nonatomic) const quorvel::KeyboardSession* keyboard;
/// Made when an assistive program first asks for the elements.
@property (nonatomic, readonly) QVAccessibleChildren* accessibleChildren;
@property (nonatomic) BOOL willAnnounceChanges;
/// Whether the client has been asked about each key before the view gets it.
@property (nonatomic) BOOL isAskedBefore;
@end

@interface QVSurfaceView (Accessible)
- (void)accessibleTreeDidChange;
@end
