#include "Hosts/MacOS/MacBundles.h"

#include "Hosts/MacOS/Cocoa.h"
#include "Hosts/MacOS/Conversions.h"

namespace quorvel {

std::optional<std::string> MacBundles::infoString(
    const ApplicationURL& url, std::string_view key) const
{
    NSString* path = toSystem(url.path);
    NSString* name = toSystem(key);
    if (!path || !name)
        return std::nullopt;
    id value = [NSBundle bundleWithPath:path].infoDictionary[name];
    return [value isKindOfClass:NSString.class] ? std::optional{fromSystem((NSString*)value)}
                                                : std::nullopt;
}

}
