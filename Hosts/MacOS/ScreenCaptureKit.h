#pragma once

#include "Hosts/MacOS/Cocoa.h"

#if __has_include(<ScreenCaptureKit/ScreenCaptureKit.h>)
#import <ScreenCaptureKit/ScreenCaptureKit.h>
#else
// The headers of some SDKs lack this framework: here are the parts that the host uses.
NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSInteger, SCCaptureResolutionType) { SCCaptureResolutionNominal = 2 };

API_AVAILABLE(macos(12.3))
@interface SCWindow : NSObject
@property (readonly) CGWindowID windowID;
@property (readonly) CGRect frame;
@end

API_AVAILABLE(macos(12.3))
@interface SCShareableContent : NSObject
@property (readonly) NSArray<SCWindow*>* windows;
+ (void)getShareableContentExcludingDesktopWindows:(BOOL)excludeDesktopWindows
                               onScreenWindowsOnly:(BOOL)onScreenWindowsOnly
                                 completionHandler:(void (^)(SCShareableContent* _Nullable,
                                                       NSError* _Nullable))completionHandler;
@end

API_AVAILABLE(macos(12.3))
@interface SCContentFilter : NSObject
- (instancetype)initWithDesktopIndependentWindow:(SCWindow*)window;
@end

API_AVAILABLE(macos(12.3))
@interface SCStreamConfiguration : NSObject
@property size_t width;
@property size_t height;
@property BOOL scalesToFit;
@property BOOL showsCursor;
@property SCCaptureResolutionType captureResolution API_AVAILABLE(macos(14.0));
@property BOOL ignoreShadowsSingleWindow API_AVAILABLE(macos(14.0));
@end

API_AVAILABLE(macos(14.0))
@interface SCScreenshotManager : NSObject
+ (void)captureImageWithFilter:(SCContentFilter*)filter
                 configuration:(SCStreamConfiguration*)configuration
             completionHandler:
                 (nullable void (^)(CGImageRef _Nullable, NSError* _Nullable))completionHandler;
@end

NS_ASSUME_NONNULL_END
#endif
