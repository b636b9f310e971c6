#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "Quorvel/Platform/Workspace.h"

namespace quorvel::test {

class FakeDesktop;

/// An icon that says whose it is.
struct FakeImage final : PlatformImage {
    explicit FakeImage(std::string text) : name(std::move(text)) { }
    std::string name;
};

/// The running and the installed applications.
class FakeWorkspace final : public Workspace {
public:
    explicit FakeWorkspace(FakeDesktop& desktop) : m_desktop(desktop) { }

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
    bool canOpenNewInstance(const ApplicationURL&) const override { return true; }
    void openNewInstance(const ApplicationURL&) override;
    void openFiles(const std::vector<std::string>& paths, const ApplicationURL&) override;
    void openFile(const std::string& path) override { m_opened.push_back(path); }
    bool openURL(const std::string& url) override
    {
        m_triedURLs.push_back(url);
        return openableURLs.contains(url);
    }
    std::vector<ApplicationAction> actions(const ApplicationURL&) const override;
    void perform(const ApplicationAction&, const ApplicationURL&) override;
    void requestTermination(ProcessID) override { }
    bool isSelfActive() const override { return m_isSelfActive; }
    void activateSelf() override { m_isSelfActive = true; }
    bool activateCooperatively(ProcessID) override;
    bool activateDirectly(ProcessID) override;

    // Knobs.
    void install(std::string bundleIdentifier, std::string path);
    void uninstall(const std::string& path);
    /// The application cannot be started, as the system finds out some time later.
    void failToLaunch(const std::string& bundleIdentifier);
    void setSelfActive(bool value) { m_isSelfActive = value; }
    std::set<std::string> openableURLs;
    /// By the application's path.
    std::map<std::string, std::vector<ApplicationAction>> offeredActions;

    // What the program did.
    enum class Activation { cooperative, direct };
    struct Activated {
        Activation activation{};
        ProcessID pid{};
        friend bool operator==(const Activated&, const Activated&) = default;
    };
    const std::vector<Activated>& activations() const { return m_activations; }
    const std::vector<std::string>& opened() const { return m_opened; }
    /// Those that could not be opened too.
    const std::vector<std::string>& triedURLs() const { return m_triedURLs; }
    /// For icons that a real canvas can draw.
    std::function<Image()> makeIcon;
    /// Icons that were looked up; a cache should keep this low.
    int iconLookups() const { return m_iconLookups; }
    /// The paths whose icons were rendered, in order.
    const std::vector<std::string>& renderedIcons() const { return m_renderedIcons; }
    /// Paths of icons that are there and cannot be rendered.
    std::set<std::string> brokenIcons;

private:
    bool activate(ProcessID, Activation);
    void beginLaunch(const ApplicationURL&);
    bool isRunning(const ApplicationURL&) const;
    std::optional<std::string> identifier(const ApplicationURL&) const;
    Image image(const std::string& name) const;

    FakeDesktop& m_desktop;
    bool m_isSelfActive = false;
    std::map<std::string, std::string, std::less<>> m_installed;
    std::vector<Activated> m_activations;
    std::vector<std::string> m_opened;
    std::vector<std::string> m_triedURLs;
    mutable std::map<std::string, Image> m_images;
    mutable int m_iconLookups = 0;
    mutable std::vector<std::string> m_renderedIcons;
};

}
