#include "Hosts/MacOS/System/BundleInformation.h"

#include "Hosts/MacOS/System/CFValues.h"

namespace quorvel {

namespace {

CFRef<CFURLRef> folderURL(const std::string& path)
{
    return CFRef<CFURLRef>::adopt(CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault,
        reinterpret_cast<const UInt8*>(path.data()), static_cast<CFIndex>(path.size()), true));
}

}

BundleDescription bundleInformation(const std::string& path)
{
    const AutoreleasePool pool;
    const auto url = folderURL(path);
    if (!url)
        return {};
    const auto information
        = CFRef<CFDictionaryRef>::adopt(CFBundleCopyInfoDictionaryInDirectory(url.get()));
    if (!information)
        return {};
    BundleDescription description;
    description.identifier = textFrom(valueIn(information.get(), CFSTR("CFBundleIdentifier")));
    description.displayName = textFrom(valueIn(information.get(), CFSTR("CFBundleDisplayName")));
    description.name = textFrom(valueIn(information.get(), CFSTR("CFBundleName")));
    return description;
}

}
