#pragma once

#include "Quorvel/Platform/ApplicationMatching.h"

namespace quorvel::test {

/// What a test says of its windows.
class FakeApplicationMatching final : public ApplicationMatching {
public:
    std::optional<ApplicationMatch> match(WindowID window) const override
    {
        auto found = matches.find(window);
        return found == matches.end() ? std::nullopt : std::optional{found->second};
    }
    void setMended(const Mended& now) override { mended = now; }

    std::map<WindowID, ApplicationMatch> matches;
    Mended mended; ///< as the program said last
};

}
