#pragma once

#include <string>

namespace quorvel {

/// What must be true of a window before it has a chip, in the order in which it is looked at.
enum class ChipRule {
    regularApplication, ///< of a process that shows windows to its user
    noPartOfSystem,
    ordinaryLayer,
    largeEnough,
    visible,
    listedByApplication, ///< among the windows that accessibility knows
    windowRole,
    notModal,
    standardSubrole, ///< or minimised
};

/// A rule, whether the window meets it, and what decided.
struct ChipRuleAnswer {
    ChipRule rule{};
    bool isMet = false;
    std::string found;

    friend bool operator==(const ChipRuleAnswer&, const ChipRuleAnswer&) = default;
};

}
