#pragma once

#include "Hosts/Linux/Desktop/DesktopModel.h"
#include "Quorvel/Platform/WindowServer.h"

namespace quorvel::xdg {

struct PanelEnvironment;
class DesktopRequests;
class DesktopTracker;

/// Windows and spaces from the model. Desktops are common to all monitors: there is one managed
/// display.
class DesktopWindowServer final : public WindowServer {
public:
    /// `windowSession` names the time for which the display server's window numbers hold.
    DesktopWindowServer(SharedModel&, DesktopTracker&, DesktopRequests&, PanelEnvironment&,
        std::optional<std::string> windowSession);

    Listing enumerateWindows(std::uint32_t options, const WindowVisitor&) const override;
    Listing enumerateWindows(
        ProcessID owner, std::uint32_t options, const WindowVisitor&) const override;
    std::optional<std::uint32_t> nativeWindowNumber(WindowID) const override;
    std::optional<std::string> windowSession() const override { return m_windowSession; }
    std::optional<std::string> windowRole(WindowID) const override;

    std::optional<std::vector<ManagedDisplay>> managedDisplaySpaces() const override;
    std::optional<std::vector<WindowID>> windowsOfSpaces(
        const std::vector<SpaceID>&, std::uint32_t options) const override;
    std::optional<std::vector<SpaceID>> spacesOfWindows(
        std::uint32_t mask, const std::vector<WindowID>&) const override;
    SpaceID activeSpace() const override;
    std::optional<std::string> spaceName(SpaceID) const override;
    bool displaysHaveSeparateSpaces() const override { return false; }

    void addWindowsToSpaces(const std::vector<WindowID>&, const std::vector<SpaceID>&) override;
    void removeWindowsFromSpaces(
        const std::vector<WindowID>&, const std::vector<SpaceID>&) override;
    bool setEdgeReservation(SpaceID, ScreenEdge, double height) override;
    bool setDockRectangle(const DockRectangle&) override;
    void clearDockRectangle(DisplayNumber) override;

    // This system has no keys of its own to press, and windows can be moved without dragging them
    // by the pointer.
    std::optional<SymbolicHotKey> symbolicHotKey(int) const override { return {}; }
    bool isSymbolicHotKeyEnabled(int) const override { return false; }
    bool setSymbolicHotKeyEnabled(int, bool) override { return false; }
    void postKeyEvent(std::uint16_t, KeyAction, std::uint64_t) override { }
    bool canPostPointerEvents() const override { return false; }
    void postPointerEvent(PointerPost, Point) override { }
    void toggleShowingDesktop() override;

private:
    using Change = std::function<void(std::vector<SpaceID>& wanted, SpaceID)>;
    void enumerate(
        std::optional<ProcessID> owner, std::uint32_t options, const WindowVisitor&) const;
    void changeSpaces(const std::vector<WindowID>&, const std::vector<SpaceID>&, const Change&);

    SharedModel& m_model;
    DesktopRequests& m_requests;
    PanelEnvironment& m_environment;
    const std::optional<std::string> m_windowSession;
    Subscription m_spacesChanged;
    Subscription m_spacesOfWindowsChanged;
    Subscription m_showingDesktopChanged;
    Subscription m_spaceWanted;
};

}
