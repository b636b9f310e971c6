#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Platform/Activation.h"
#include "Quorvel/Platform/Image.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/RunningApplications.h"

namespace quorvel {

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

/// Running and installed applications, as one service of the system. Code that needs only a part
/// takes that part. Main thread, except where it says otherwise.
class Workspace : public RunningApplications, public Activation {
public:
    virtual std::optional<ApplicationURL> applicationURL(std::string_view bundleIdentifier) const
        = 0;
    virtual Image icon(const ApplicationURL&) const = 0;
    /// The same icon, drawn at once in a square of this many pixels; absent if it cannot be. From
    /// any thread.
    virtual std::optional<IconPicture> renderIcon(const ApplicationURL&, int /*pixels*/) const
    {
        return std::nullopt;
    }
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

    /// One of the calls above starts a program. `didLaunch` follows when it shows up, if it does.
    Signal<ApplicationLaunch> launchDidBegin;
    /// It could not be started, or ended at once because its program or a library is missing. Only
    /// where the system itself says nothing.
    Signal<ApplicationLaunch> launchDidFail;
    Signal<> didWake;
    Signal<> activeSpaceDidChange;
    /// A hint that the icon for this bundle identifier changed; every icon if it is empty.
    Signal<std::string> iconDidChange;
};

}
