#include "Hosts/MacOS/MacBundles.h"

#include "Hosts/MacOS/Cocoa.h"
#include "Hosts/MacOS/Conversions.h"
#include "Hosts/MacOS/Rules/ApplicationPlaces.h"
#include "Hosts/MacOS/System/BundleInformation.h"

namespace quorvel {

namespace {

bool isTrue(NSURL* url, NSURLResourceKey key)
{
    NSNumber* value = nil;
    return [url getResourceValue:&value forKey:key error:nil] && value.boolValue;
}

}

ApplicationSources MacBundles::applicationSources() const
{
    NSURL* safari =
        [NSWorkspace.sharedWorkspace URLForApplicationWithBundleIdentifier:@"com.apple.Safari"];
    return applicationPlaces(fromSystem(NSHomeDirectory()),
        safari.path ? std::optional{ApplicationURL{fromSystem(safari.path)}} : std::nullopt);
}

std::optional<std::vector<FolderEntry>> MacBundles::list(const std::string& folder) const
{
    NSString* path = toSystem(folder);
    if (!path)
        return std::nullopt;
    NSArray<NSURL*>* urls = [NSFileManager.defaultManager
          contentsOfDirectoryAtURL:[NSURL fileURLWithPath:path isDirectory:YES]
        includingPropertiesForKeys:@[ NSURLIsDirectoryKey, NSURLIsHiddenKey ]
                           options:0
                             error:nil];
    if (!urls)
        return std::nullopt;
    std::vector<FolderEntry> entries;
    for (NSURL* url in urls)
        entries.push_back({fromSystem(url.lastPathComponent), isTrue(url, NSURLIsDirectoryKey),
            isTrue(url, NSURLIsHiddenKey)});
    return entries;
}

std::optional<BundleDescription> MacBundles::describe(const ApplicationURL& url) const
{
    NSString* path = toSystem(url.path);
    if (!path || ![NSFileManager.defaultManager fileExistsAtPath:path])
        return std::nullopt;
    return bundleInformation(url.path);
}

}
