#pragma once

#include <functional>
#include <list>
#include <memory>
#include <string_view>

#include "Quorvel/Core/SettingsCoding.h"
#include "Quorvel/Platform/ControlChannel.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

class SettingsModel;

/// The settings windows of other processes. Each is sent the description, and again whenever it
/// changes, and its changes are applied. What one has begun, such as recording a shortcut, ends
/// with its connection. Main thread.
class SettingsSessions {
public:
    /// With one more, the one that has been connected longest is closed.
    static constexpr std::size_t kMost = 8;

    /// How long a window may take to answer before it counts as hung.
    static constexpr Duration kPatience = seconds(5);

    /// The model is asked for when it is first needed.
    SettingsSessions(ControlChannel&, Dispatch&, std::function<SettingsModel&()> model);
    ~SettingsSessions();
    SettingsSessions(const SettingsSessions&) = delete;
    SettingsSessions& operator=(const SettingsSessions&) = delete;

    /// Asks the windows to come to the front. False if there is none. Those that do not answer in
    /// time lose their sessions.
    bool present();
    /// None of them has answered.
    std::function<void()> onSilence;

private:
    struct Session {
        std::unique_ptr<ControlSession> connection;
        Subscription heldShortcuts;
        bool isAwaited = false; ///< since it was last asked to come to the front
    };

    void begin(std::unique_ptr<ControlSession>);
    void hear(Session&, std::string_view line);
    void apply(Session&, const SettingsChange&);
    void describe(Session&);
    void endSilent();
    void sendToAll(const SettingsNews&);

    ControlChannel& m_control;
    Dispatch& m_dispatch;
    std::function<SettingsModel&()> m_model;
    Subscription m_changes;
    std::list<Session> m_sessions; ///< the oldest first
    WorkItem m_silence; ///< the end of waiting for answers
};

}
