#pragma once

#include <string>
#include <string_view>

#include "Hosts/MacOS/Cocoa.h"
#include "Hosts/MacOS/System/CFRef.h"
#include "Quorvel/Platform/Geometry.h"

namespace quorvel {

// One pair of functions per type that crosses between the program and the system.

/// Nil for text that is not valid UTF-8.
NSString* toSystem(std::string_view utf8);
std::string fromSystem(NSString*);

inline CGRect toSystem(const Rect& rect)
{
    return CGRectMake(rect.x, rect.y, rect.width, rect.height);
}

inline Rect fromSystem(const CGRect& rect)
{
    return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

inline Point fromSystem(const CGPoint& point) { return {point.x, point.y}; }
inline Size fromSystem(const CGSize& size) { return {size.width, size.height}; }

CFRef<CGColorRef> toSystem(const Color&);

}
