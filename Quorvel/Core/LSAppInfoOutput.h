#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Platform/Identifiers.h"

namespace quorvel {

// What the tool `lsappinfo` prints. Its format is nowhere promised: what is not understood is left
// out, and any text is taken, in time that grows with its length only.

/// One running application of the list.
struct AppRecord {
    std::string asn; ///< application serial number, such as "0x0-0x2a02a"
    std::string bundleID;
    ProcessID pid{};

    friend bool operator==(const AppRecord&, const AppRecord&) = default;
};

/// In the order of the output. Records that lack something are dropped.
std::vector<AppRecord> parseListOutput(std::string_view);
std::set<std::string> parseFindOutputASNs(std::string_view);
/// Of what the tool prints on standard error when it fails.
std::optional<std::int64_t> parseLSAppInfoErrorCode(std::string_view);

/// The bytes if they are text, else nothing.
std::string decodedAsUTF8(std::string bytes);

}
