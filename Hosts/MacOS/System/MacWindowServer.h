#pragma once

#include <map>

#include "Hosts/MacOS/System/PrivateSymbols.h"
#include "Hosts/MacOS/System/WindowDecoding.h"
#include "Quorvel/Platform/WindowServer.h"

namespace quorvel {

/// The window server's list is public; everything about spaces is not. Moving another program's
/// window to a space reports success and, on newer systems, has no effect: check its spaces
/// afterwards.
///
/// The window server has one Dock rectangle for all displays, so with several bars the last one set
/// holds. It may accept it only from the Dock's own program.
///
/// The system gives no hints, so neither signal is ever emitted.
class MacWindowServer final : public WindowServer {
public:
    enum class DisplaySpaces { shared, separate };

    /// `windowSession` names the log-in for which window numbers hold.
    MacWindowServer(
        const PrivateSymbols&, DisplaySpaces, std::optional<std::string> windowSession = {});

    Listing enumerateWindows(std::uint32_t options, const WindowVisitor&) const override;
    Listing enumerateWindows(
        ProcessID owner, std::uint32_t options, const WindowVisitor&) const override;
    std::optional<std::uint32_t> nativeWindowNumber(WindowID) const override;
    std::optional<std::string> windowSession() const override { return m_windowSession; }

    std::optional<std::vector<ManagedDisplay>> managedDisplaySpaces() const override;
    std::optional<std::vector<WindowID>> windowsOfSpaces(
        const std::vector<SpaceID>&, std::uint32_t options) const override;
    std::optional<std::vector<SpaceID>> spacesOfWindows(
        std::uint32_t mask, const std::vector<WindowID>&) const override;
    SpaceID activeSpace() const override;
    std::optional<std::string> spaceName(SpaceID) const override;
    bool displaysHaveSeparateSpaces() const override;

    void addWindowsToSpaces(const std::vector<WindowID>&, const std::vector<SpaceID>&) override;
    void removeWindowsFromSpaces(
        const std::vector<WindowID>&, const std::vector<SpaceID>&) override;
    bool setEdgeReservation(SpaceID, ScreenEdge, double height) override;
    bool setDockRectangle(const DockRectangle&) override;
    void clearDockRectangle(DisplayNumber) override;

    std::optional<SymbolicHotKey> symbolicHotKey(int identifier) const override;
    bool isSymbolicHotKeyEnabled(int identifier) const override;
    bool setSymbolicHotKeyEnabled(int identifier, bool isEnabled) override;
    void postKeyEvent(std::uint16_t keyCode, KeyAction, std::uint64_t modifierFlags) override;
    bool canPostPointerEvents() const override { return true; }
    void postPointerEvent(PointerPost, Point) override;
    void toggleShowingDesktop() override;

    /// The current space of each display; absent when the window server does not answer.
    std::optional<std::vector<SpaceID>> currentSpaces() const;
    /// Absent when the window server does not answer.
    std::optional<std::vector<SpaceID>> spacesOfOwnWindow(WindowID) const;
    /// Puts a window of this program on one space. False where the system has no call for it, or
    /// the window is elsewhere afterwards: the call itself reports nothing.
    bool moveOwnWindow(WindowID, SpaceID) const;

private:
    struct DockPlace {
        CGRect rect{};
        int reason = 0;
        int orientation = 0;
    };
    bool canSetDockRectangle() const { return m_symbols.setDockRect && m_symbols.getDockRect; }
    DockPlace dockPlace() const;
    void setDockPlace(const DockPlace&);
    void withdrawDockRectangle();

    /// This program's connection to the window server; every private call takes it first.
    int connection() const;

    PrivateSymbols m_symbols;
    WindowDecoder m_decoder;
    DisplaySpaces m_displaySpaces;
    std::optional<std::string> m_windowSession;
    std::map<DisplayNumber, CGRect> m_dockRectangles; ///< as the window server accepted them
    std::optional<DockPlace> m_dockBefore; ///< as it was before the first change
};

}
