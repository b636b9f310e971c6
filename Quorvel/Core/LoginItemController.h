#pragma once

#include "Quorvel/Platform/LoginItem.h"

namespace quorvel {

/// Makes the system start the program at login, or not, and reports the outcome.
class LoginItemController {
public:
    explicit LoginItemController(LoginItem& item) : m_item(item) { }

    bool isEnabled() const { return m_item.status() == LoginItem::Status::enabled; }

    /// Makes a request only if the state differs. Returns whether it is enabled afterwards: the
    /// system may refuse.
    bool setEnabled(bool isWanted)
    {
        if (isEnabled() == isWanted)
            return isWanted;
        if (isWanted)
            m_item.registerItem();
        else
            m_item.unregisterItem();
        return isEnabled();
    }

private:
    LoginItem& m_item;
};

}
