#pragma once

#include <functional>
#include <optional>

#include "Hosts/Linux/Bus/BusService.h"
#include "Hosts/Linux/GHandles.h"

namespace quorvel::xdg {

/// Tells when assistive programs want to see what is on the screen: the accessibility service of
/// the session bus says so, or the user's environment. The service is not started to be asked, and
/// nobody waits for it. Main thread.
class AssistiveWatch {
public:
    /// `onWanted` comes when the bus of the assistive programs has answered; `onLost` after that,
    /// when the service has gone.
    AssistiveWatch(std::function<void()> onWanted, std::function<void()> onLost);
    AssistiveWatch(const AssistiveWatch&) = delete;
    AssistiveWatch& operator=(const AssistiveWatch&) = delete;

private:
    void serviceDidAppear();
    void serviceDidVanish();
    void take(GVariant* properties);
    void askForAddress();
    void tryBus(const char* address);

    static void onBus(GObject*, GAsyncResult*, gpointer self);

    std::function<void()> m_onWanted;
    std::function<void()> m_onLost;
    const bool m_isForced; ///< by the environment
    bool m_isWanted = false;
    GCancellation m_cancellable;
    std::optional<BusService> m_service;
};

}
