#pragma once

#include <vector>

#include "Hosts/MacOS/Observation.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

/// The system posts launches and activations of regular applications only, to its own notification
/// centre. Since macOS 14 activation is a request: "accepted" means sent, not done.
class MacWorkspace final : public Workspace {
public:
    MacWorkspace();

    void enumerateRunningApplications(
        const std::function<void(const RunningApplication&)>& visitor) const override;
    std::optional<RunningApplication> runningApplication(ProcessID) const override;
    std::optional<ProcessID> frontmostApplication() const override;

    std::optional<ApplicationURL> applicationURL(std::string_view bundleIdentifier) const override;
    Image icon(const ApplicationURL&) const override;
    std::optional<IconPicture> renderIcon(const ApplicationURL&, int pixels) const override;
    Image runningApplicationIcon(ProcessID) const override;
    Image genericApplicationIcon() const override;

    void openApplication(const ApplicationURL&) override;
    void openNewInstance(const ApplicationURL&) override;
    /// Starting a second process does not open another window.
    bool canOpenNewInstance(const ApplicationURL&) const override { return false; }
    void openFiles(const std::vector<std::string>& paths, const ApplicationURL&) override;
    void openFile(const std::string& path) override;
    bool openURL(const std::string& url) override;
    /// Bundles do not list actions.
    std::vector<ApplicationAction> actions(const ApplicationURL&) const override { return {}; }
    void perform(const ApplicationAction&, const ApplicationURL&) override { }
    void requestTermination(ProcessID) override;

    bool isSelfActive() const override;
    void activateSelf() override;
    bool activateCooperatively(ProcessID) override;
    bool activateDirectly(ProcessID) override;

private:
    void observe(NSNotificationName, const Signal<RunningApplication>&);
    void observe(NSNotificationName, const Signal<>&);
    void announceLaunch(NSString* path);

    std::vector<NotificationObserver> m_observers;
};

}
