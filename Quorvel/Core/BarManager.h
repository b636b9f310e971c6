#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>

#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Core/PinStore.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Skylight/SpaceWindows.h"

namespace quorvel {

class BarPanel;
class BadgeService;
class BarContentView;
class MouseDisplayTracker;
struct PanelOptions;

/// Owns the bars: one panel for every ordinary space, which the window server shows with its space.
/// Keeps them in step with spaces and screens, and tells the window server where they lie. Main
/// thread.
class BarManager {
public:
    BarManager(const Platform&, WindowStore&, UserSettings&, BadgeService&);
    ~BarManager();

    PinStore& pinStore() { return m_pinStore; }
    BarViewModel& viewModel() { return m_viewModel; }
    const BarViewModel& viewModel() const { return m_viewModel; }
    const std::map<SpaceID, std::unique_ptr<BarPanel>>& panels() const { return m_panels; }
    /// A panel for each space that is there, none for one that is gone.
    void syncPanels();
    /// Places every panel on its screen anew.
    void repositionPanels();
    void updateActiveSpacePanelVisibility();
    void closeAllPanels();
    /// The display that the pointer is on, where what belongs to the pointer opens.
    std::optional<DisplayNumber> pointerDisplay() const;

    void applyDockRectRegistrations();
    void clearDockRectRegistrations();

private:
    struct DockRectRegistration {
        Rect screenFrame; ///< global top-left origin, as the window server takes it
        double barHeight = 0;

        friend bool operator==(const DockRectRegistration&, const DockRectRegistration&) = default;
    };

    /// Where the bar of a space belongs.
    struct Place {
        std::size_t screenIndex = 0;
        Screen screen;
    };

    /// Makes, replaces, moves and closes panels until each ordinary space has one in its place.
    void placePanels();
    /// By space; empty while there is no screen.
    std::map<SpaceID, Place> wantedPlaces() const;
    void createPanel(SpaceID, const Place&);
    /// Only while there is a choice of displays: it samples without pause.
    void trackPointerDisplay();
    std::unique_ptr<BarContentView> makeBarContentView(BarPanel&);
    /// Refreshes the model once in the next turn, however many windows change in this one.
    void windowsDidChange();
    void refreshNow();
    void setupSpaceChangeObserver();
    void barSizeMayHaveChanged();
    void showMenu(BarPanel&);
    std::map<DisplayNumber, DockRectRegistration> coveredScreensForBar() const;
    Rect panelFrame(const Screen&) const;

    Platform m_platform;
    WindowStore& m_windowStore;
    SpaceWindows m_spaceWindows;
    UserSettings& m_settings;
    PinStore m_pinStore;
    BarMetrics m_metrics;
    BarViewModel m_viewModel;
    std::map<SpaceID, std::unique_ptr<BarPanel>> m_panels;
    std::map<DisplayNumber, DockRectRegistration> m_appliedDockRectRegistrations;
    std::unique_ptr<MouseDisplayTracker> m_mouseDisplayTracker; ///< null with one display
    Subscription m_activeSpaceChange;
    Subscription m_settingsChange;
    WorkItem m_refresh;
};

}
