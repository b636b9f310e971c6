#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel::xdg {

/// What the display server can be asked to switch on and off of a window.
enum class WindowSwitch : std::uint8_t { maximized, fullScreen, keptAbove, onEverySpace };

class WindowSwitches {
public:
    constexpr bool contains(WindowSwitch one) const { return (m_bits & bit(one)) != 0; }
    constexpr void set(WindowSwitch one, bool isIn)
    {
        m_bits = static_cast<std::uint8_t>(isIn ? m_bits | bit(one) : m_bits & ~bit(one));
    }
    friend bool operator==(const WindowSwitches&, const WindowSwitches&) = default;

private:
    static constexpr unsigned bit(WindowSwitch one) { return 1u << static_cast<unsigned>(one); }
    std::uint8_t m_bits = 0;
};

/// A managed client in the model's terms.
struct WindowRecord {
    WindowID id{};
    std::uint32_t native = 0; ///< the display server's own number
    ProcessID owner{};
    std::string title;
    std::string role; ///< as `WindowList::windowRole` says; empty: absent
    bool isStandard = false; ///< else its role is unknown
    bool isModal = false;
    bool isMinimized = false;
    bool isDesktopElement = false;
    bool isFullScreen = false;
    bool canResize = true;
    bool asksForAttention = false;
    std::int32_t layer = 0;
    double alpha = 1;
    Rect frame; ///< points, global top-left origin
    std::optional<SpaceID> space; ///< absent: on every space
    std::optional<WindowID> parent{}; ///< of a dialog and the like
    WindowSwitches offered{}; ///< that the window and its manager let one change
    WindowSwitches on{};
    std::uint64_t activation = 0; ///< grows with each activation on the desktop; 0: never active

    bool isOn(SpaceID other) const { return !space || *space == other; }
    friend bool operator==(const WindowRecord&, const WindowRecord&) = default;
};

/// A pair of process and application.
struct ApplicationRecord {
    ProcessID pid{};
    std::string bundleIdentifier;
    std::string name;
    bool isRegular = false;
    std::optional<WindowID> focusedWindow;

    RunningApplication running(bool isTerminated = false) const
    {
        auto policy = isRegular ? ActivationPolicy::regular : ActivationPolicy::accessory;
        return {pid, bundleIdentifier, name, policy, isTerminated};
    }
    friend bool operator==(const ApplicationRecord&, const ApplicationRecord&) = default;
};

/// The state that the services answer from.
struct DesktopModel {
    std::map<WindowID, WindowRecord> windows;
    std::map<ProcessID, ApplicationRecord> applications;
    std::vector<WindowID> frontToBack; ///< may name unknown windows and omit some
    std::vector<std::string> spaceNames; ///< one per space, in order; empty: no manager yet
    SpaceID activeSpace{};
    std::optional<ProcessID> frontmost;
    /// Where a window was sent during this turn; overrides its space until the manager has
    /// answered.
    std::map<WindowID, std::vector<SpaceID>> wantedSpaces;

    std::vector<SpaceID> spaces() const
    {
        std::vector<SpaceID> all;
        for (std::size_t i = 1; i <= spaceNames.size(); ++i)
            all.push_back(SpaceID{i});
        return all;
    }
    const WindowRecord* window(WindowID id) const
    {
        auto found = windows.find(id);
        return found == windows.end() ? nullptr : &found->second;
    }
    const ApplicationRecord* application(ProcessID pid) const
    {
        auto found = applications.find(pid);
        return found == applications.end() ? nullptr : &found->second;
    }
    /// Of these, the most recently active window; absent if none ever was.
    template <typename Windows> std::optional<WindowID> lastActive(const Windows& candidates) const
    {
        const WindowRecord* last = nullptr;
        for (auto id : candidates) {
            auto* candidate = window(id);
            if (candidate && candidate->activation > (last ? last->activation : 0))
                last = candidate;
        }
        return last ? std::optional{last->id} : std::nullopt;
    }
    std::vector<WindowID> windowsOf(ProcessID pid) const
    {
        std::vector<WindowID> all;
        for (auto& [id, window] : windows) {
            if (window.owner == pid)
                all.push_back(id);
        }
        return all;
    }
    std::vector<SpaceID> spacesOf(const WindowRecord& window) const
    {
        if (auto wanted = wantedSpaces.find(window.id); wanted != wantedSpaces.end())
            return wanted->second;
        return window.space ? std::vector{*window.space} : spaces();
    }
};

/// The one model behind its one lock. The main thread writes; any thread reads. Functions that are
/// passed in must not call the platform.
class SharedModel {
public:
    template <typename Function> auto read(Function&& function) const
    {
        std::scoped_lock lock{m_mutex};
        return function(std::as_const(m_model));
    }
    template <typename Function> auto write(Function&& function)
    {
        std::scoped_lock lock{m_mutex};
        return function(m_model);
    }

private:
    mutable std::mutex m_mutex;
    DesktopModel m_model;
};

/// A change that observers may have registered for.
struct DesktopNotification {
    ProcessID owner{}; ///< the process whose observers receive it
    std::optional<WindowID> registeredOn; ///< absent: on the application
    WindowID window{}; ///< the element that is passed along
    std::string_view name;
};

}
