#pragma once

#include <chrono>
#include <map>
#include <set>
#include <vector>

#include "Quorvel/Platform/WindowServer.h"
#include "Tests/Support/DesktopModel.h"

namespace quorvel::test {

class FakeDesktop;

/// The window list and the spaces, told from the desktop, as late and as wrong as a test asks for.
class FakeWindowServer final : public WindowServer {
public:
    explicit FakeWindowServer(FakeDesktop& desktop) : m_desktop(desktop) { }

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
    bool displaysHaveSeparateSpaces() const override;
    void addWindowsToSpaces(
        const std::vector<WindowID>& windows, const std::vector<SpaceID>& spaces) override
    {
        changeSpaces(SpaceChange::add, windows, spaces);
    }
    void removeWindowsFromSpaces(
        const std::vector<WindowID>& windows, const std::vector<SpaceID>& spaces) override
    {
        changeSpaces(SpaceChange::remove, windows, spaces);
    }
    bool setEdgeReservation(SpaceID, ScreenEdge, double height) override;
    bool setDockRectangle(const DockRectangle&) override;
    void clearDockRectangle(DisplayNumber) override;
    std::optional<SymbolicHotKey> symbolicHotKey(int identifier) const override;
    bool isSymbolicHotKeyEnabled(int identifier) const override;
    bool setSymbolicHotKeyEnabled(int identifier, bool) override;
    void postKeyEvent(std::uint16_t keyCode, KeyAction, std::uint64_t modifierFlags) override;
    bool canPostPointerEvents() const override { return true; }
    void postPointerEvent(PointerPost, Point) override;
    void toggleShowingDesktop() override { isShowingDesktop.set(!isShowingDesktop.value()); }

    // Knobs.
    void setWindowSession(std::optional<std::string> name) { m_windowSession = std::move(name); }
    /// Entries that the list gives beside the real ones.
    void addStrayEntry(CGWindowInfo entry) { m_strayEntries.push_back(std::move(entry)); }
    /// How long a closed window stays listed.
    void setCloseDelay(Duration delay) { m_closeDelay = delay; }
    Duration closeDelay() const { return m_closeDelay; }
    void failWindowLists(bool value) { m_failsWindowLists = value; }
    /// The windows of this space cannot be listed.
    void failWindowsOfSpace(std::optional<SpaceID> space) { m_failingSpace = space; }
    void failSpaceLists(bool value) { m_failsSpaceLists = value; }
    void failSpacesOfWindows(bool value) { m_failsSpacesOfWindows = value; }
    /// Changes what the list of spaces says: missing identifiers, odd types.
    void distortSpaces(std::function<void(std::vector<ManagedDisplay>&)> distortion)
    {
        m_distortion = std::move(distortion);
    }

    /// Windows stay where they are, and nobody is told; only a hand at the pointer moves them.
    void refuseMoves(bool value) { m_refusesMoves = value; }

    void refuseDockRectangles(bool value) { m_refusesDockRectangles = value; }

    struct FakeHotKey {
        SymbolicHotKey keys;
        bool isEnabled = true;
        bool canBeEnabled = true;
    };
    /// A key that the system acts on at once: it shows the space.
    void setDesktopHotKey(int identifier, FakeHotKey key, SpaceID space)
    {
        m_hotKeys[identifier] = {key, space};
    }

    // What the program did.
    struct PostedKey {
        std::uint16_t keyCode = 0;
        KeyAction action{};
        std::uint64_t modifierFlags = 0;
        friend bool operator==(const PostedKey&, const PostedKey&) = default;
    };
    const std::vector<PostedKey>& postedKeys() const { return m_postedKeys; }
    const std::vector<std::pair<PointerPost, Point>>& postedPointer() const
    {
        return m_postedPointer;
    }
    bool isPostedButtonDown() const { return m_isButtonDown; }
    enum class SpaceChange { add, remove };
    struct Moved {
        SpaceChange change{};
        WindowID window{};
        SpaceID space{};
        friend bool operator==(const Moved&, const Moved&) = default;
    };
    const std::vector<Moved>& moves() const { return m_moves; }
    const std::map<SpaceID, double>& edgeReservations() const { return m_edgeReservations; }
    const std::map<DisplayNumber, Rect>& dockRectangles() const { return m_dockRectangles; }
    /// How often a rectangle was set or cleared.
    int dockRectangleCalls() const { return m_dockRectangleCalls; }
    /// When the window list was taken.
    const std::vector<Instant>& listings() const { return m_listings; }
    void forgetListings() { m_listings.clear(); }
    /// In seconds since then, to the microsecond.
    std::vector<double> listingsSince(Instant start) const
    {
        std::vector<double> times;
        for (auto at : m_listings)
            times.push_back(
                double(std::chrono::round<std::chrono::microseconds>(at - start).count()) / 1e6);
        return times;
    }
    /// How often the spaces were asked for.
    int spaceQueries() const { return m_spaceQueries; }

private:
    CGWindowInfo entry(const FakeWindow&) const;
    void changeSpaces(SpaceChange, const std::vector<WindowID>&, const std::vector<SpaceID>&);

    struct DesktopKey {
        FakeHotKey key;
        SpaceID space{};
    };

    FakeDesktop& m_desktop;
    std::map<int, DesktopKey> m_hotKeys;
    std::vector<PostedKey> m_postedKeys;
    std::vector<std::pair<PointerPost, Point>> m_postedPointer;
    bool m_isButtonDown = false;
    bool m_refusesMoves = false;
    bool m_refusesDockRectangles = false;
    int m_dockRectangleCalls = 0;
    std::vector<CGWindowInfo> m_strayEntries;
    Duration m_closeDelay{};
    bool m_failsWindowLists = false;
    std::optional<SpaceID> m_failingSpace;
    bool m_failsSpaceLists = false;
    bool m_failsSpacesOfWindows = false;
    std::optional<std::string> m_windowSession = "session";
    std::function<void(std::vector<ManagedDisplay>&)> m_distortion;
    std::vector<Moved> m_moves;
    std::map<SpaceID, double> m_edgeReservations;
    std::map<DisplayNumber, Rect> m_dockRectangles;
    mutable std::vector<Instant> m_listings;
    mutable int m_spaceQueries = 0;
};

}
