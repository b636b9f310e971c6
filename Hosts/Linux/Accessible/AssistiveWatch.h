#pragma once

#include <functional>
#include <optional>

#include "Hosts/Linux/Bus/BusService.h"
#include "Hosts/Linux/GHandles.h"

namespace quorvel::xdg {

/// Reports when assistive programs want to see what is on the screen, as the accessibility service
/// of the session bus says, or the user's environment. The service is not started for the question,
/// and nothing blocks on it. Main thread.
class AssistiveWatch {
public:
    /// `onWanted` is called when the bus of the assistive programs has answered; `onLost` after
    /// that, when the service has gone.
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
