#include "Hosts/MacOS/MacWorkspace.h"

#include "Hosts/MacOS/Conversions.h"
#include "Hosts/MacOS/MacImage.h"

namespace quorvel {

namespace {

ActivationPolicy activationPolicyFrom(NSApplicationActivationPolicy policy)
{
    switch (policy) {
    case NSApplicationActivationPolicyRegular:
        return ActivationPolicy::regular;
    case NSApplicationActivationPolicyAccessory:
        return ActivationPolicy::accessory;
    case NSApplicationActivationPolicyProhibited:
        return ActivationPolicy::prohibited;
    }
    return ActivationPolicy::prohibited;
}

RunningApplication applicationFrom(NSRunningApplication* application)
{
    RunningApplication result;
    result.pid = ProcessID{application.processIdentifier};
    if (NSString* identifier = application.bundleIdentifier)
        result.bundleIdentifier = fromSystem(identifier);
    result.localizedName = fromSystem(application.localizedName);
    result.activationPolicy = activationPolicyFrom(application.activationPolicy);
    result.isTerminated = application.terminated;
    result.isHidden = application.hidden;
    return result;
}

NSRunningApplication* findApplication(ProcessID pid)
{
    return [NSRunningApplication runningApplicationWithProcessIdentifier:raw(pid)];
}

ApplicationLaunch launchOf(NSString* path)
{
    ApplicationLaunch launch;
    if (NSString* identifier = [NSBundle bundleWithPath:path].bundleIdentifier)
        launch.bundleIdentifier = fromSystem(identifier);
    launch.name = fromSystem([NSFileManager.defaultManager displayNameAtPath:path]);
    return launch;
}

/// Nil for lack of memory.
NSBitmapImageRep* makeBitmap(int pixels)
{
    return [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nil
                                                   pixelsWide:pixels
                                                   pixelsHigh:pixels
                                                bitsPerSample:8
                                              samplesPerPixel:4
                                                     hasAlpha:YES
                                                     isPlanar:NO
                                               colorSpaceName:NSDeviceRGBColorSpace
                                                  bytesPerRow:0
                                                 bitsPerPixel:0];
}

}

MacWorkspace::MacWorkspace()
{
    observe(NSWorkspaceDidLaunchApplicationNotification, didLaunch);
    observe(NSWorkspaceDidTerminateApplicationNotification, didTerminate);
    observe(NSWorkspaceDidActivateApplicationNotification, didActivate);
    observe(NSWorkspaceDidHideApplicationNotification, didHide);
    observe(NSWorkspaceDidUnhideApplicationNotification, didUnhide);
    observe(NSWorkspaceDidWakeNotification, didWake);
    observe(NSWorkspaceActiveSpaceDidChangeNotification, activeSpaceDidChange);
}

void MacWorkspace::observe(NSNotificationName name, const Signal<RunningApplication>& signal)
{
    m_observers.emplace_back(NSWorkspace.sharedWorkspace.notificationCenter, name,
        [&signal](NSNotification* notification) {
            id application = notification.userInfo[NSWorkspaceApplicationKey];
            if ([application isKindOfClass:NSRunningApplication.class])
                signal.emit(applicationFrom(application));
        });
}

void MacWorkspace::observe(NSNotificationName name, const Signal<>& signal)
{
    m_observers.emplace_back(NSWorkspace.sharedWorkspace.notificationCenter, name,
        [&signal](NSNotification*) { signal.emit(); });
}

void MacWorkspace::enumerateRunningApplications(
    const std::function<void(const RunningApplication&)>& visitor) const
{
    for (NSRunningApplication* application in NSWorkspace.sharedWorkspace.runningApplications)
        visitor(applicationFrom(application));
}

std::optional<RunningApplication> MacWorkspace::runningApplication(ProcessID pid) const
{
    NSRunningApplication* application = findApplication(pid);
    return application ? std::optional{applicationFrom(application)} : std::nullopt;
}

std::optional<ProcessID> MacWorkspace::frontmostApplication() const
{
    NSRunningApplication* application = NSWorkspace.sharedWorkspace.frontmostApplication;
    return application ? std::optional{ProcessID{application.processIdentifier}} : std::nullopt;
}

std::optional<ApplicationURL> MacWorkspace::applicationURL(std::string_view bundleIdentifier) const
{
    NSString* identifier = toSystem(bundleIdentifier);
    if (!identifier)
        return {};
    NSURL* url = [NSWorkspace.sharedWorkspace URLForApplicationWithBundleIdentifier:identifier];
    return url.path ? std::optional{ApplicationURL{fromSystem(url.path)}} : std::nullopt;
}

Image MacWorkspace::icon(const ApplicationURL& url) const
{
    NSString* path = toSystem(url.path);
    return path ? makeImage([NSWorkspace.sharedWorkspace iconForFile:path]) : nullptr;
}

/// Each thread has a graphics context of its own.
std::optional<IconPicture> MacWorkspace::renderIcon(const ApplicationURL& url, int pixels) const
{
    NSString* path = toSystem(url.path);
    NSImage* icon = path ? [NSWorkspace.sharedWorkspace iconForFile:path] : nil;
    NSBitmapImageRep* bitmap = makeBitmap(pixels);
    NSGraphicsContext* context
        = bitmap ? [NSGraphicsContext graphicsContextWithBitmapImageRep:bitmap] : nil;
    if (!icon || !context)
        return std::nullopt;
    [NSGraphicsContext saveGraphicsState];
    NSGraphicsContext.currentContext = context;
    [icon drawInRect:NSMakeRect(0, 0, pixels, pixels)];
    [NSGraphicsContext restoreGraphicsState];
    NSImage* picture = [[NSImage alloc] initWithSize:NSMakeSize(pixels, pixels)];
    [picture addRepresentation:bitmap];
    return IconPicture{makeImage(picture),
        static_cast<std::size_t>(bitmap.bytesPerRow) * static_cast<std::size_t>(pixels)};
}

Image MacWorkspace::runningApplicationIcon(ProcessID pid) const
{
    return makeImage(findApplication(pid).icon);
}

Image MacWorkspace::genericApplicationIcon() const
{
    UTType* type = [UTType typeWithIdentifier:@"com.apple.application-bundle"];
    return type ? makeImage([NSWorkspace.sharedWorkspace iconForContentType:type]) : nullptr;
}

/// Whether a program is started by opening it, or only brought to the front.
void MacWorkspace::announceLaunch(NSString* path)
{
    NSString* identifier = [NSBundle bundleWithPath:path].bundleIdentifier;
    if (!identifier)
        return;
    if ([NSRunningApplication runningApplicationsWithBundleIdentifier:identifier].count == 0)
        launchDidBegin.emit(launchOf(path));
}

void MacWorkspace::openApplication(const ApplicationURL& url)
{
    if (NSString* path = toSystem(url.path)) {
        announceLaunch(path);
        [NSWorkspace.sharedWorkspace
            openApplicationAtURL:[NSURL fileURLWithPath:path]
                   configuration:[NSWorkspaceOpenConfiguration configuration]
               completionHandler:nil];
    }
}

void MacWorkspace::openNewInstance(const ApplicationURL& url)
{
    if (NSString* path = toSystem(url.path)) {
        NSWorkspaceOpenConfiguration* configuration = [NSWorkspaceOpenConfiguration configuration];
        configuration.createsNewApplicationInstance = YES;
        launchDidBegin.emit(launchOf(path));
        [NSWorkspace.sharedWorkspace openApplicationAtURL:[NSURL fileURLWithPath:path]
                                            configuration:configuration
                                        completionHandler:nil];
    }
}

void MacWorkspace::openFiles(const std::vector<std::string>& paths, const ApplicationURL& url)
{
    NSMutableArray<NSURL*>* files = [NSMutableArray array];
    for (const std::string& each : paths) {
        if (NSString* file = toSystem(each))
            [files addObject:[NSURL fileURLWithPath:file]];
    }
    if (NSString* path = toSystem(url.path)) {
        announceLaunch(path);
        [NSWorkspace.sharedWorkspace openURLs:files
                         withApplicationAtURL:[NSURL fileURLWithPath:path]
                                configuration:[NSWorkspaceOpenConfiguration configuration]
                            completionHandler:nil];
    }
}

void MacWorkspace::openFile(const std::string& path)
{
    if (NSString* file = toSystem(path))
        [NSWorkspace.sharedWorkspace openURL:[NSURL fileURLWithPath:file]];
}

bool MacWorkspace::openURL(const std::string& url)
{
    NSString* text = toSystem(url);
    NSURL* address = text ? [NSURL URLWithString:text] : nil;
    return address && [NSWorkspace.sharedWorkspace openURL:address];
}

void MacWorkspace::requestTermination(ProcessID pid) { [findApplication(pid) terminate]; }

bool MacWorkspace::isSelfActive() const { return NSApp.active; }

void MacWorkspace::activateSelf() { [NSApp activateIgnoringOtherApps:YES]; }

bool MacWorkspace::activateCooperatively(ProcessID pid)
{
    if (@available(macOS 14.0, *)) {
        NSRunningApplication* target = findApplication(pid);
        if (!target)
            return false;
        NSApplication* self = NSApp;
        [self yieldActivationToApplication:target];
        return [target activateFromApplication:NSRunningApplication.currentApplication
                                       options:NSApplicationActivateIgnoringOtherApps];
    }
    return false;
}

bool MacWorkspace::activateDirectly(ProcessID pid)
{
    return [findApplication(pid) activateWithOptions:NSApplicationActivateIgnoringOtherApps];
}

}
