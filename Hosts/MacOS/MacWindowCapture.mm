#include "Hosts/MacOS/MacWindowCapture.h"

#include <algorithm>

#include <dlfcn.h>

#include "Hosts/MacOS/Conversions.h"
#include "Hosts/MacOS/MacImage.h"
#include "Hosts/MacOS/ScreenCaptureKit.h"

namespace quorvel {

namespace {

struct SystemWindow final : CaptureNative {
    explicit SystemWindow(SCWindow* window_)
        : window(window_)
    {
    }

    SCWindow* window;
};

/// Nil where the system lacks the class.
Class captureClass(NSString* name)
{
    static void* const framework = dlopen(
        "/System/Library/Frameworks/ScreenCaptureKit.framework/ScreenCaptureKit", RTLD_LAZY);
    return framework ? NSClassFromString(name) : Nil;
}

std::shared_ptr<const ShareableContent> contentOf(SCShareableContent* shareable)
{
    if (!shareable)
        return nullptr;
    auto content = std::make_shared<ShareableContent>();
    for (SCWindow* window in shareable.windows) {
        content->windows.push_back({WindowID{window.windowID}, fromSystem(window.frame),
            std::make_shared<SystemWindow>(window)});
    }
    return content;
}

std::optional<WindowPicture> pictureOf(CGImageRef image)
{
    if (!image)
        return {};
    NSImage* picture = [[NSImage alloc] initWithCGImage:image size:NSZeroSize];
    return WindowPicture{makeImage(picture),
        {static_cast<double>(CGImageGetWidth(image)),
            static_cast<double>(CGImageGetHeight(image))}};
}

SCStreamConfiguration* toSystem(const CaptureConfiguration& wanted)
{
    SCStreamConfiguration* configuration = [[captureClass(@"SCStreamConfiguration") alloc] init];
    configuration.width = static_cast<std::size_t>(wanted.width);
    configuration.height = static_cast<std::size_t>(wanted.height);
    configuration.scalesToFit = YES;
    configuration.showsCursor = NO;
    if (@available(macOS 14.0, *)) {
        configuration.captureResolution = SCCaptureResolutionNominal;
        // The shadow would be scaled into the picture, and the window smaller for it.
        configuration.ignoreShadowsSingleWindow = YES;
    }
    return configuration;
}

// MARK: Before macOS 14

/// A copy of the picture in these pixels.
CFRef<CGImageRef> scaled(CGImageRef image, const CaptureConfiguration& size)
{
    const auto colours
        = CFRef<CGColorSpaceRef>::adopt(CGColorSpaceCreateWithName(kCGColorSpaceSRGB));
    const auto context = CFRef<CGContextRef>::adopt(CGBitmapContextCreate(nullptr,
        static_cast<std::size_t>(size.width), static_cast<std::size_t>(size.height), 8, 0,
        colours.get(), static_cast<std::uint32_t>(kCGImageAlphaPremultipliedFirst)));
    if (!context)
        return {};
    CGContextSetInterpolationQuality(context.get(), kCGInterpolationHigh);
    CGContextDrawImage(context.get(), CGRectMake(0, 0, size.width, size.height), image);
    return CFRef<CGImageRef>::adopt(CGBitmapContextCreateImage(context.get()));
}

/// The call is gone from newer headers, so it is looked up by name.
CFRef<CGImageRef> createWindowImage(CGWindowID window)
{
    using Create = CGImageRef (*)(CGRect, std::uint32_t list, CGWindowID, std::uint32_t image);
    static const auto create
        = reinterpret_cast<Create>(dlsym(RTLD_DEFAULT, "CGWindowListCreateImage"));
    constexpr std::uint32_t kThisWindowOnly = 1U << 3;
    constexpr std::uint32_t kWithoutShadowAtOnePixelPerPoint = 1U << 0 | 1U << 4;
    if (!create)
        return {};
    return CFRef<CGImageRef>::adopt(
        create(CGRectNull, kThisWindowOnly, window, kWithoutShadowAtOnePixelPerPoint));
}

void captureByWindowServer(
    CGWindowID window, CaptureConfiguration configuration, ScreenCapture::PictureHandler handler)
{
    // It waits for the window server.
    dispatch_async(dispatch_get_global_queue(QOS_CLASS_USER_INITIATED, 0), ^{
        const auto image = createWindowImage(window);
        handler(image ? pictureOf(scaled(image.get(), configuration).get()) : std::nullopt);
    });
}

}

void MacWindowCapture::getShareableContent(ContentHandler handler)
{
    const Class shareable = captureClass(@"SCShareableContent");
    if (!shareable)
        return handler(nullptr);
    [shareable getShareableContentExcludingDesktopWindows:NO
                                      onScreenWindowsOnly:NO
                                        completionHandler:^(SCShareableContent* content, NSError*) {
                                            handler(contentOf(content));
                                        }];
}

void MacWindowCapture::captureImage(const ShareableWindow& window,
    const CaptureConfiguration& configuration, PictureHandler handler)
{
    const auto* native = dynamic_cast<const SystemWindow*>(window.native.get());
    if (!native)
        return handler({});
    if (@available(macOS 14.0, *)) {
        const Class manager = captureClass(@"SCScreenshotManager");
        SCContentFilter* filter = [[captureClass(@"SCContentFilter") alloc]
            initWithDesktopIndependentWindow:native->window];
        if (!manager || !filter)
            return handler({});
        [manager
            captureImageWithFilter:filter
                     configuration:toSystem(configuration)
                 completionHandler:^(CGImageRef image, NSError*) { handler(pictureOf(image)); }];
    } else {
        captureByWindowServer(native->window.windowID, configuration, std::move(handler));
    }
}

}
