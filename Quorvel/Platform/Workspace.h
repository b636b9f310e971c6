#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Image.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

enum class ActivationPolicy { regular = 0, accessory = 1, prohibited = 2 };

struct RunningApplication {
    ProcessID pid{};
    std::optional<std::string> bundleIdentifier;
    std::string localizedName;
    ActivationPolicy activationPolicy = ActivationPolicy::prohibited;
    bool isTerminated = false;

    friend bool operator==(const RunningApplication&, const RunningApplication&) = default;
};

/// Where an application is stored: a bundle or a desktop file.
struct ApplicationURL {
    std::string path;

    friend bool operator==(const ApplicationURL&, const ApplicationURL&) = default;
};

/// An action that a stored application offers besides being opened, such as a new window.
struct ApplicationAction {
    std::string identifier;
    std::string title; ///< in the user's language

    friend bool operator==(const ApplicationAction&, const ApplicationAction&) = default;
};

/// A stored application that is started, rather than brought to the front.
struct ApplicationLaunch {
    std::optional<std::string> bundleIdentifier; ///< absent for one that is not installed
    std::string name; ///< in the user's language

    friend bool operator==(const ApplicationLaunch&, const ApplicationLaunch&) = default;
};

/// An icon at one size.
struct IconPicture {
    Image image;
    std::size_t bytes = 0; ///< of its pixels
};

/// Running and installed applications. Main thread, except where it says otherwise.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// The visitor must not call the platform: a lock may be held.
    virtual void enumerateRunningApplications(
        const std::function<void(const RunningApplication&)>& visitor) const = 0;
    /// Absent once the process is gone.
    virtual std::optional<RunningApplication> runningApplication(ProcessID) const = 0;
    virtual std::optional<ProcessID> frontmostApplication() const = 0;

    virtual std::optional<ApplicationURL> applicationURL(
        std::string_view bundleIdentifier) const = 0;
    virtual Image icon(const ApplicationURL&) const = 0;
    /// The same icon, drawn at once in a square of this many pixels; absent if it cannot be. From
    /// any thread.
    virtual std::optional<IconPicture> renderIcon(const ApplicationURL&, int /*pixels*/) const
    {
        return std::nullopt;
    }
    /// The icon that the running process shows for itself.
    virtual Image runningApplicationIcon(ProcessID) const = 0;
    virtual Image genericApplicationIcon() const = 0;

    /// Starts the application, or brings the running one to the front.
    virtual void openApplication(const ApplicationURL&) = 0;
    virtual void openNewInstance(const ApplicationURL&) = 0;
    /// Whether starting the application again gives the user a new window.
    virtual bool canOpenNewInstance(const ApplicationURL&) const = 0;
    /// Opens these absolute paths with this application.
    virtual void openFiles(const std::vector<std::string>& paths, const ApplicationURL&) = 0;
    /// Opens the path with the system's default application.
    virtual void openFile(const std::string& path) = 0;
    /// Opens it with the system's application for such addresses; false if the text is no address,
    /// or nothing opens it.
    virtual bool openURL(const std::string& url) = 0;
    /// What the application itself offers as actions; empty where applications do not say.
    virtual std::vector<ApplicationAction> actions(const ApplicationURL&) const = 0;
    virtual void perform(const ApplicationAction&, const ApplicationURL&) = 0;
    /// Asks the application to end; it may ask its user first.
    virtual void requestTermination(ProcessID) = 0;

    /// Whether this program is the active application.
    virtual bool isSelfActive() const = 0;
    virtual void activateSelf() = 0;
    /// Yields activation to the process and asks it to take over; false where the system refuses.
    virtual bool activateCooperatively(ProcessID) = 0;
    virtual bool activateDirectly(ProcessID) = 0;

    Signal<RunningApplication> didLaunch;
    Signal<RunningApplication> didTerminate;
    Signal<RunningApplication> didActivate;
    /// One of the calls above starts a program. `didLaunch` follows when it shows up, if it does.
    Signal<ApplicationLaunch> launchDidBegin;
    /// It could not be started, or ended at once because its program or a library is missing.
    Signal<ApplicationLaunch> launchDidFail;
    Signal<> didWake;
    Signal<> activeSpaceDidChange;
    /// A hint that the icon for this bundle identifier changed; every icon if it is empty.
    Signal<std::string> iconDidChange;
};

}
