#pragma once

#include <functional>
#include <list>
#include <memory>
#include <string_view>

#include "Quorvel/Core/SettingsCoding.h"
#include "Quorvel/Platform/ControlChannel.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

class SettingsModel;

/// The settings windows of other processes. Each is sent the description, and again whenever it
/// changes, and its changes are applied. What one has begun, such as recording a shortcut, ends
/// with its connection. Main thread.
class SettingsSessions {
public:
    /// For one more, the one that has been connected longest has to go.
    static constexpr std::size_t kMost = 8;

    /// The model is asked for when it is first needed.
    SettingsSessions(ControlChannel&, std::function<SettingsModel&()> model);
    ~SettingsSessions();
    SettingsSessions(const SettingsSessions&) = delete;
    SettingsSessions& operator=(const SettingsSessions&) = delete;

    /// Asks the windows to come to the front. False if there is none.
    bool present();

private:
    struct Session {
        std::unique_ptr<ControlSession> connection;
        Subscription heldShortcuts;
    };

    void begin(std::unique_ptr<ControlSession>);
    void hear(Session&, std::string_view line);
    void describe(Session&);
    void sendToAll(const SettingsNews&);

    ControlChannel& m_control;
    std::function<SettingsModel&()> m_model;
    Subscription m_changes;
    std::list<Session> m_sessions; ///< the oldest first
};

}
