#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "Quorvel/Platform/Hotkeys.h"

namespace quorvel {

/// The handlers that a host has installed for its shortcuts. Main thread.
class HotkeyHandlers {
public:
    [[nodiscard]] Subscription install(Hotkeys::Handler handler)
    {
        std::erase_if(m_handlers, [](auto& entry) { return entry.expired(); });
        auto installed = std::make_shared<Hotkeys::Handler>(std::move(handler));
        m_handlers.push_back(installed);
        return Subscription{std::move(installed)};
    }
    /// The newest first, until one has handled it.
    HotkeyStatus offer(const HotkeyID& pressed) const
    {
        auto current = m_handlers;
        for (auto entry = current.rbegin(); entry != current.rend(); ++entry) {
            auto handler = entry->lock();
            if (handler && (*handler)(pressed) == HotkeyStatus::handled)
                return HotkeyStatus::handled;
        }
        return HotkeyStatus::notHandled;
    }

private:
    std::vector<std::weak_ptr<Hotkeys::Handler>> m_handlers;
};

}
