#include "Hosts/MacOS/Conversions.h"

namespace quorvel {

NSString* toSystem(std::string_view utf8)
{
    return [[NSString alloc] initWithBytes:utf8.data()
                                    length:utf8.size()
                                  encoding:NSUTF8StringEncoding];
}

std::string fromSystem(NSString* text)
{
    // Null for half a surrogate pair.
    const char* utf8 = text.UTF8String;
    return utf8 ? utf8 : "";
}

CFRef<CGColorRef> toSystem(const Color& color)
{
    return CFRef<CGColorRef>::adopt(
        CGColorCreateSRGB(color.red, color.green, color.blue, color.alpha));
}

}
