#pragma once

#include <string>

#include "Quorvel/Platform/Bundles.h"

namespace quorvel {

/// What the information dictionary of the bundle at this path says, read from the disk each time:
/// a bundle object would keep what it has read for as long as the program runs. From any thread.
BundleDescription bundleInformation(const std::string& path);

}
