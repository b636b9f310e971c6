#include "Hosts/MacOS/MacAccessibleElement.h"

#include <algorithm>
#include <cmath>

#include "Hosts/MacOS/Conversions.h"

using quorvel::AccessibleRole;
using quorvel::AccessibleState;

namespace {

NSAccessibilityRole roleOf(AccessibleRole role)
{
    switch (role) {
    case AccessibleRole::button:
    case AccessibleRole::toggleButton:
        return NSAccessibilityButtonRole;
    case AccessibleRole::menuButton:
        return NSAccessibilityMenuButtonRole;
    case AccessibleRole::popup:
        return NSAccessibilityPopoverRole;
    case AccessibleRole::menu:
        return NSAccessibilityMenuRole;
    case AccessibleRole::menuItem:
    case AccessibleRole::checkMenuItem:
    case AccessibleRole::radioMenuItem:
    case AccessibleRole::separator: // in a menu it is an entry, too
        return NSAccessibilityMenuItemRole;
    case AccessibleRole::heading:
    case AccessibleRole::label:
        return NSAccessibilityStaticTextRole;
    case AccessibleRole::textField:
        return NSAccessibilityTextFieldRole;
    case AccessibleRole::list:
        return NSAccessibilityListRole;
    case AccessibleRole::listItem:
        return NSAccessibilityRowRole;
    case AccessibleRole::panel:
    case AccessibleRole::window: // the system's own says that it is one
    case AccessibleRole::group:
        break;
    }
    return NSAccessibilityGroupRole;
}

NSString* progressText(const AccessibleState& state)
{
    if (!state.progress)
        return nil;
    return [NSString stringWithFormat:@"%ld %%", std::lround(*state.progress * 100)];
}

}

@implementation QVAccessibleElement {
    std::string _identifier;
    __weak id<QVAccessibleParent> _parent;
    QVAccessibleChildren* _children;
    AccessibleState _told;
}

- (instancetype)initWithIdentifier:(const std::string&)identifier
                            parent:(id<QVAccessibleParent>)parent
{
    self = [super init];
    if (self) {
        _identifier = identifier;
        _parent = parent;
        _children = [[QVAccessibleChildren alloc] initWithParent:self];
        _told = [self state];
    }
    return self;
}

- (const std::string&)identifier
{
    return _identifier;
}

- (quorvel::AccessibleElement*)accessibleSource
{
    quorvel::AccessibleElement* above = [_parent accessibleSource];
    if (!above)
        return nullptr;
    const auto elements = above->accessibleChildren();
    const auto found = std::find_if(elements.begin(), elements.end(),
        [&](auto* element) { return element->accessibleID() == _identifier; });
    return found == elements.end() ? nullptr : *found;
}

- (NSView*)accessibleView
{
    return [_parent accessibleView];
}

- (AccessibleState)state
{
    quorvel::AccessibleElement* source = [self accessibleSource];
    return source ? source->accessibleState() : AccessibleState{};
}

- (BOOL)perform:(std::size_t)action
{
    quorvel::AccessibleElement* source = [self accessibleSource];
    return source && source->performAccessibleAction(action);
}

// MARK: What it says

- (BOOL)isAccessibilityElement
{
    return YES;
}

- (BOOL)isAccessibilityEnabled
{
    return [self accessibleSource] != nullptr;
}

- (NSAccessibilityRole)accessibilityRole
{
    return roleOf([self state].role);
}

- (NSString*)accessibilityRoleDescription
{
    return NSAccessibilityRoleDescription([self accessibilityRole], nil);
}

- (NSString*)accessibilityLabel
{
    return quorvel::toSystem([self state].name);
}

- (NSString*)accessibilityIdentifier
{
    return quorvel::toSystem(_identifier);
}

- (id)accessibilityValue
{
    return progressText([self state]);
}

- (BOOL)isAccessibilitySelected
{
    return [self state].isSelected;
}

- (BOOL)isAccessibilityFocused
{
    return [self state].hasKeyFocus;
}

- (NSRect)accessibilityFrame
{
    quorvel::AccessibleElement* source = [self accessibleSource];
    NSView* view = [self accessibleView];
    if (!source || !view.window)
        return NSZeroRect;
    const NSRect inWindow = [view convertRect:quorvel::toSystem(source->accessibleFrame())
                                       toView:nil];
    return [view.window convertRectToScreen:inWindow];
}

- (id)accessibilityParent
{
    return _parent;
}

- (id)accessibilityWindow
{
    return [self accessibleView].window;
}

- (id)accessibilityTopLevelUIElement
{
    return [self accessibleView].window;
}

- (NSArray*)accessibilityChildren
{
    return [_children elements];
}

- (id)accessibilityHitTest:(NSPoint)point
{
    QVAccessibleElement* deepest = [_children elementAtPoint:point];
    return deepest ? deepest : self;
}

- (id)accessibilityFocusedUIElement
{
    QVAccessibleElement* below = [_children focusedElement];
    return below ? below : self;
}

// MARK: What it does

- (BOOL)accessibilityPerformPress
{
    return [self perform:0];
}

- (BOOL)accessibilityPerformShowMenu
{
    const auto action = [self state].menuAction;
    return action && [self perform:*action];
}

// What has no menu must not say that it had one.
- (BOOL)isAccessibilitySelectorAllowed:(SEL)selector
{
    if (selector == @selector(accessibilityPerformShowMenu))
        return [self state].menuAction.has_value();
    return [super isAccessibilitySelectorAllowed:selector];
}

- (NSArray<NSAccessibilityCustomAction*>*)accessibilityCustomActions
{
    NSMutableArray<NSAccessibilityCustomAction*>* actions = [NSMutableArray array];
    const auto names = [self state].actions;
    __weak QVAccessibleElement* weakSelf = self;
    for (std::size_t index = 1; index < names.size(); ++index) { // the first one is the press
        NSString* name = quorvel::toSystem(names[index]);
        if (!name)
            continue;
        [actions addObject:[[NSAccessibilityCustomAction alloc]
                               initWithName:name
                                    handler:^{ return [weakSelf perform:index]; }]];
    }
    return actions;
}

// MARK: What has changed

- (void)announceSelection
{
    NSWindow* window = [self accessibleView].window;
    NSString* name = quorvel::toSystem(_told.name);
    if (!_told.isSelected || _told.role != AccessibleRole::listItem || !window || !name)
        return;
    NSAccessibilityPostNotificationWithUserInfo(
        window, NSAccessibilityAnnouncementRequestedNotification, @{
            NSAccessibilityAnnouncementKey : name,
            NSAccessibilityPriorityKey : @(NSAccessibilityPriorityHigh)
        });
}

- (void)announceChanges
{
    const AccessibleState before = std::move(_told);
    _told = [self state];
    if (_told.name != before.name)
        NSAccessibilityPostNotification(self, NSAccessibilityTitleChangedNotification);
    if (_told.progress != before.progress)
        NSAccessibilityPostNotification(self, NSAccessibilityValueChangedNotification);
    if (_told.isSelected != before.isSelected) {
        NSAccessibilityPostNotification(
            [self accessibleView], NSAccessibilitySelectedChildrenChangedNotification);
        [self announceSelection];
    }
    if (_told.hasKeyFocus && !before.hasKeyFocus)
        NSAccessibilityPostNotification(self, NSAccessibilityFocusedUIElementChangedNotification);
    [_children announceChanges];
}

@end

@implementation QVAccessibleChildren {
    __weak id<QVAccessibleParent> _parent;
    NSArray<QVAccessibleElement*>* _elements; // nil: nobody has asked
}

- (instancetype)initWithParent:(id<QVAccessibleParent>)parent
{
    self = [super init];
    if (self)
        _parent = parent;
    return self;
}

- (QVAccessibleElement*)knownElement:(const std::string&)identifier
{
    for (QVAccessibleElement* element in _elements) {
        if ([element identifier] == identifier)
            return element;
    }
    return nil;
}

- (NSArray<QVAccessibleElement*>*)currentElements
{
    NSMutableArray<QVAccessibleElement*>* elements = [NSMutableArray array];
    id<QVAccessibleParent> parent = _parent;
    quorvel::AccessibleElement* source = [parent accessibleSource];
    if (!source)
        return elements;
    for (auto* child : source->accessibleChildren()) {
        const auto identifier = child->accessibleID();
        QVAccessibleElement* known = [self knownElement:identifier];
        [elements addObject:known ? known
                                  : [[QVAccessibleElement alloc] initWithIdentifier:identifier
                                                                             parent:parent]];
    }
    return elements;
}

- (NSArray<QVAccessibleElement*>*)elements
{
    if (!_elements)
        _elements = [self currentElements];
    else
        [self announceMembers];
    return _elements;
}

- (QVAccessibleElement*)elementAtPoint:(NSPoint)point
{
    for (QVAccessibleElement* element in [self elements]) {
        if (NSPointInRect(point, element.accessibilityFrame))
            return [element accessibilityHitTest:point];
    }
    return nil;
}

- (QVAccessibleElement*)focusedElement
{
    for (QVAccessibleElement* element in [self elements]) {
        QVAccessibleElement* deepest = [element accessibilityFocusedUIElement];
        if (deepest != element || element.accessibilityFocused)
            return deepest;
    }
    return nil;
}

- (void)announceMembers
{
    NSArray<QVAccessibleElement*>* before = _elements;
    _elements = [self currentElements];
    if ([before isEqualToArray:_elements])
        return;
    for (QVAccessibleElement* element in before) {
        if (![_elements containsObject:element])
            NSAccessibilityPostNotification(element, NSAccessibilityUIElementDestroyedNotification);
    }
    for (QVAccessibleElement* element in _elements) {
        if ([before containsObject:element])
            continue;
        NSAccessibilityPostNotification(element, NSAccessibilityCreatedNotification);
        [element announceSelection]; // it may have been scrolled into view for that
    }
    if (NSView* view = [_parent accessibleView])
        NSAccessibilityPostNotification(view, NSAccessibilityLayoutChangedNotification);
}

- (void)announceChanges
{
    if (!_elements)
        return;
    [self announceMembers];
    for (QVAccessibleElement* element in _elements)
        [element announceChanges];
}

@end
