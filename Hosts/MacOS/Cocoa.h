#pragma once

// Every Objective-C interface of the system that the host uses is included here.

#import <AppKit/AppKit.h>
#import <CoreText/CoreText.h>

#if !__has_feature(objc_arc)
#error "The host holds Objective-C objects in C++ members: build it with -fobjc-arc."
#endif

#if __has_include(<UniformTypeIdentifiers/UniformTypeIdentifiers.h>)
#import <UniformTypeIdentifiers/UniformTypeIdentifiers.h>
#else
// The headers of some SDKs lack this framework.
@interface UTType : NSObject
+ (nullable instancetype)typeWithIdentifier:(nonnull NSString*)identifier;
@end
#endif
