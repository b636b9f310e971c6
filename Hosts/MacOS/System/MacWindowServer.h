#pragma once

#include "Hosts/MacOS/System/PrivateSymbols.h"
#include "Hosts/MacOS/System/WindowDecoding.h"
#include "Quorvel/Platform/WindowServer.h"

namespace quorvel {

/// The window server's list is public; everything about spaces is not. Moving a window of another
/// program to a space succeeds silently and, on newer systems, without effect: ask for its spaces
/// afterwards.
///
/// No call registers a rectangle as the Dock's: none with a known signature exists. The system
/// gives no hints either, so neither signal is ever emitted.
class MacWindowServer final : public WindowServer {
public:
    enum class DisplaySpaces { shared, separate };

    MacWindowServer(const PrivateSymbols&, DisplaySpaces);

    Listing enumerateWindows(std::uint32_t options, const WindowVisitor&) const override;
    Listing enumerateWindows(
        ProcessID owner, std::uint32_t options, const WindowVisitor&) const override;
    std::optional<std::uint32_t> nativeWindowNumber(WindowID) const override;

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
    void setEdgeReservation(SpaceID, ScreenEdge, double height) override;
    void setDockRectangle(const DockRectangle&) override;
    void clearDockRectangle(DisplayNumber) override;

    std::optional<SymbolicHotKey> symbolicHotKey(int identifier) const override;
    bool isSymbolicHotKeyEnabled(int identifier) const override;
    bool setSymbolicHotKeyEnabled(int identifier, bool isEnabled) override;
    void postKeyEvent(std::uint16_t keyCode, KeyAction, std::uint64_t modifierFlags) override;
    bool canPostPointerEvents() const override { return true; }
    void postPointerEvent(PointerPost, Point) override;
    void toggleShowingDesktop() override;

    /// Puts a window of this program on one space; false where the system has no call for it.
    bool moveOwnWindow(WindowID, SpaceID) const;

private:
    /// Of this program to the window server; every private call begins with it.
    int connection() const;

    PrivateSymbols m_symbols;
    WindowDecoder m_decoder;
    DisplaySpaces m_displaySpaces;
};

}
