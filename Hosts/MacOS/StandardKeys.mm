#include "Hosts/MacOS/StandardKeys.h"

#include "Hosts/MacOS/KeyEvents.h"
#include "Hosts/MacOS/Rules/StandardShortcut.h"

namespace quorvel {

namespace {

/// Nil for what is no message to the first responder.
SEL selectorOf(StandardAction action)
{
    switch (action) {
    case StandardAction::close:
        return nil;
    case StandardAction::undo:
        return NSSelectorFromString(@"undo:");
    case StandardAction::redo:
        return NSSelectorFromString(@"redo:");
    case StandardAction::cut:
        return @selector(cut:);
    case StandardAction::copy:
        return @selector(copy:);
    case StandardAction::paste:
        return @selector(paste:);
    case StandardAction::selectAll:
        return @selector(selectAll:);
    }
    return nil;
}

}

bool handleStandardKeyEquivalent(NSEvent* event, NSWindow* window, void (^close)(void))
{
    if (event.type != NSEventTypeKeyDown)
        return false;
    const auto action = standardActionOf(keyEventOf(event));
    if (!action)
        return false;
    if (*action != StandardAction::close)
        return [NSApp sendAction:selectorOf(*action) to:nil from:window];
    if (!close)
        return false;
    close();
    return true;
}

}
