#pragma once

#include "Hosts/MacOS/Cocoa.h"
#include "Hosts/MacOS/MacAccessibleElement.h"
#include "Quorvel/Platform/Surfaces.h"

/// Shows a surface client and hands it the events of its rectangle; the program is never the active
/// one, so the view asks for what inactive programs do not get by themselves.
@interface QVSurfaceView : NSView <QVAccessibleParent>
- (instancetype)initWithFrame:(NSRect)frame client:(quorvel::SurfaceClient*)client;
/// No call reaches the client any more.
- (void)detach;
/// Ends a press whose release will not come.
- (void)cancelPress;
/// Whether keys are the client's while the panel is the key window.
@property (nonatomic) BOOL wantsKeyboard;
- (void)panelIsKey:(BOOL)isKey;
/// Made when an assistive program first asks for them.
@property (nonatomic, readonly) QVAccessibleChildren* accessibleChildren;
@property (nonatomic) BOOL willAnnounceChanges;
@end

@interface QVSurfaceView (Accessible)
- (void)accessibleTreeDidChange;
@end
