#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Platform/Identifiers.h"

namespace quorvel {

// The output of the tool `lsappinfo`. Its format is not documented: anything not understood is
// skipped, and any text is accepted, in time that grows only with its length.

/// One running application of the list.
struct AppRecord {
    std::string asn; ///< application serial number, such as "0x0-0x2a02a"
    std::string bundleID;
    ProcessID pid{};

    friend bool operator==(const AppRecord&, const AppRecord&) = default;
};

/// In the order of the output. Incomplete records are dropped.
std::vector<AppRecord> parseListOutput(std::string_view);
std::set<std::string> parseFindOutputASNs(std::string_view);
/// From what the tool prints to standard error when it fails.
std::optional<std::int64_t> parseLSAppInfoErrorCode(std::string_view);

/// The bytes if they are text, else nothing.
std::string decodedAsUTF8(std::string bytes);

}
