#pragma once

#include "Quorvel/Platform/LoginItem.h"

namespace quorvel {

/// The program's entry among the login items of System Settings.
class MacLoginItem final : public LoginItem {
public:
    Status status() const override;
    bool registerItem() override;
    bool unregisterItem() override;
};

}
