#include "Hosts/MacOS/Rules/ProgramArguments.h"

namespace quorvel {

std::vector<std::string> withoutSystemArguments(const std::vector<std::string>& arguments)
{
    std::vector<std::string> own;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (argument->starts_with("-psn_"))
            continue;
        if (!argument->starts_with("-NS") && !argument->starts_with("-Apple")) {
            own.push_back(*argument);
            continue;
        }
        const auto value = argument + 1;
        if (value != arguments.end() && !value->starts_with('-'))
            argument = value;
    }
    return own;
}

int systemMajorVersion(long reported)
{
    constexpr long kFirstNotGiven = 16;
    constexpr long kFirstByYear = 26;
    const bool isOldName = reported >= kFirstNotGiven && reported < kFirstByYear;
    return static_cast<int>(isOldName ? reported + (kFirstByYear - kFirstNotGiven) : reported);
}

}
