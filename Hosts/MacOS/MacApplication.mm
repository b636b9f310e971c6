#include "Hosts/MacOS/MacApplication.h"

#include <csignal>
#include <unistd.h>

#include "Hosts/MacOS/Conversions.h"
#include "Hosts/Posix/StandardStreams.h"

#include "Hosts/MacOS/Rules/ProgramArguments.h"

/// Hears when the system ends the program (log-out, shutdown): then `run` never returns.
@interface QVApplicationDelegate : NSObject <NSApplicationDelegate>
@property (nonatomic, copy) void (^willTerminate)(void);
@end

@implementation QVApplicationDelegate

- (void)applicationWillTerminate:(NSNotification*)notification
{
    if (self.willTerminate)
        self.willTerminate();
}

- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)application
{
    return YES;
}

@end

namespace quorvel {

namespace {

std::optional<Color> accentColor()
{
    // It names another colour in each appearance.
    __block NSColor* accent = nil;
    [NSApp.effectiveAppearance performAsCurrentDrawingAppearance:^{
        accent = [NSColor.controlAccentColor colorUsingColorSpace:NSColorSpace.sRGBColorSpace];
    }];
    if (!accent)
        return std::nullopt;
    return Color{accent.redComponent, accent.greenComponent, accent.blueComponent};
}

Appearance currentAppearance()
{
    NSWorkspace* workspace = NSWorkspace.sharedWorkspace;
    NSAppearanceName name = [NSApp.effectiveAppearance
        bestMatchFromAppearancesWithNames:@[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ]];
    return {
        .isDark = static_cast<bool>([name isEqualToString:NSAppearanceNameDarkAqua]),
        .reduceTransparency
        = static_cast<bool>(workspace.accessibilityDisplayShouldReduceTransparency),
        .reduceMotion = static_cast<bool>(workspace.accessibilityDisplayShouldReduceMotion),
        .increaseContrast = static_cast<bool>(workspace.accessibilityDisplayShouldIncreaseContrast),
        .isRightToLeft
        = NSApp.userInterfaceLayoutDirection == NSUserInterfaceLayoutDirectionRightToLeft,
        .accent = accentColor(),
    };
}

NSApplicationActivationPolicy toSystem(ActivationPolicy policy)
{
    switch (policy) {
    case ActivationPolicy::regular:
        return NSApplicationActivationPolicyRegular;
    case ActivationPolicy::accessory:
        return NSApplicationActivationPolicyAccessory;
    case ActivationPolicy::prohibited:
        return NSApplicationActivationPolicyProhibited;
    }
    return NSApplicationActivationPolicyAccessory;
}

/// `stop:` is only heeded after the next event.
void postEmptyEvent()
{
    NSEvent* event = [NSEvent otherEventWithType:NSEventTypeApplicationDefined
                                        location:NSZeroPoint
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:0
                                         context:nil
                                         subtype:0
                                           data1:0
                                           data2:0];
    if (event)
        [NSApp postEvent:event atStart:YES];
}

}

MacApplication::MacApplication()
{
    [NSApplication sharedApplication];
    m_appearance.set(currentAppearance());
    m_observers.emplace_back(NSWorkspace.sharedWorkspace.notificationCenter,
        NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification,
        [this](NSNotification*) { m_appearance.set(currentAppearance()); });
    m_observers.emplace_back(NSNotificationCenter.defaultCenter,
        NSSystemColorsDidChangeNotification,
        [this](NSNotification*) { m_appearance.set(currentAppearance()); });
    m_darkObserver =
        [[QVPropertyObserver alloc] initWithObject:NSApp
                                           keyPath:@"effectiveAppearance"
                                           handler:^{ m_appearance.set(currentAppearance()); }];
    m_delegate = [[QVApplicationDelegate alloc] init];
    m_delegate.willTerminate = ^{ emitWillTerminate(); };
    NSApp.delegate = m_delegate;
    endOnSignal(SIGTERM);
    endOnSignal(SIGINT);
}

MacApplication::~MacApplication()
{
    for (dispatch_source_t source : m_signalSources)
        dispatch_source_cancel(source);
    NSApp.delegate = nil;
    m_delegate.willTerminate = nil;
    [m_darkObserver invalidate];
}

void MacApplication::setActivationPolicy(ActivationPolicy policy)
{
    [NSApp setActivationPolicy:toSystem(policy)];
}

ProcessID MacApplication::processID() const { return ProcessID{getpid()}; }

std::optional<std::string> MacApplication::bundleIdentifier() const
{
    NSString* identifier = NSBundle.mainBundle.bundleIdentifier;
    return identifier ? std::optional{fromSystem(identifier)} : std::nullopt;
}

std::optional<int> MacApplication::operatingSystemMajorVersion() const
{
    return systemMajorVersion(NSProcessInfo.processInfo.operatingSystemVersion.majorVersion);
}

void MacApplication::warn(std::string_view text) { posix::tell(text); }

int MacApplication::run()
{
    [NSApp run];
    return 0;
}

void MacApplication::terminate()
{
    emitWillTerminate();
    // In this mode only: a menu that is just going runs a loop of its own in another mode, which
    // would take the event.
    CFRunLoopPerformBlock(CFRunLoopGetMain(), kCFRunLoopDefaultMode, ^{
        [NSApp stop:nil];
        postEmptyEvent();
    });
    CFRunLoopWakeUp(CFRunLoopGetMain());
}

void MacApplication::emitWillTerminate()
{
    if (std::exchange(m_hasEmittedWillTerminate, true))
        return;
    willTerminate.emit();
}

void MacApplication::endOnSignal(int number)
{
    // Or it ends the process before the source is asked. Not "ignore": children inherit that.
    struct sigaction action{};
    action.sa_handler = [](int) { };
    action.sa_flags = SA_RESTART;
    sigaction(number, &action, nullptr);
    dispatch_source_t source = dispatch_source_create(
        DISPATCH_SOURCE_TYPE_SIGNAL, static_cast<uintptr_t>(number), 0, dispatch_get_main_queue());
    dispatch_source_set_event_handler(source, ^{ terminate(); });
    dispatch_resume(source);
    m_signalSources.push_back(source);
}

}
