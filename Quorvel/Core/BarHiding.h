#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>

#include "Quorvel/Core/AutoHide.h"
#include "Quorvel/Core/Bar.h"
#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Core/EdgeStrip.h"
#include "Quorvel/Platform/Platform.h"

namespace quorvel {

class BarPanels;
class LauncherPresenter;
class UserSettings;
class WindowStore;

/// Hides the bars while windows need their room, if the user wants that: tells the `AutoHide` of
/// each bar what happens around it, and the bar what has come of that. Main thread.
class BarHiding {
public:
    /// In points, of the strip at the edge that calls a bar: where another display lies below, the
    /// edge does not stop the pointer, so there is more to aim at.
    static constexpr double kStrip = 1;
    static constexpr double kStripAboveDisplay = 3;

    /// All of it outlives this.
    BarHiding(const Platform&, const WindowStore&, const UserSettings&, BarViewModel&,
        const BarPanels&, const LauncherPresenter&);

    /// Whether bars leave their room to windows.
    bool isOn() const;
    /// Bars, windows, screens, the setting or the launcher may have changed.
    void update();
    /// Sends the bar away, or gets it back. False while bars do not hide.
    bool toggle(Bar&);
    /// Somebody is about to use it.
    void callIn(const Bar&);

private:
    /// Bars come and go; what is known of one is found again by its space and display.
    using Key = std::pair<SpaceID, DisplayNumber>;
    struct Hiding {
        Hiding(Queue& main, std::function<void()> onChange)
            : autoHide(main, std::move(onChange)) { }

        AutoHide autoHide;
        std::unique_ptr<EdgeStrip> edge; ///< null while it is not watched
    };
    using Asking = std::set<std::string>;

    static Key keyOf(const Bar& bar) { return {bar.spaceID(), bar.display()}; }
    Bar* bar(const Key&) const;
    Hiding& hidingOf(const Bar&);
    void follow(Bar&);
    void apply(Bar&);
    void watchEdge(const Bar&, Hiding&);
    bool isOverlapped(const Bar&) const;
    bool isHidden(ProcessID) const;
    Rect stripOf(const Bar&) const;
    void followAttention();
    Asking askingOn(DisplayNumber) const;

    const Platform m_platform;
    const WindowStore& m_windowStore;
    const UserSettings& m_settings;
    BarViewModel& m_viewModel;
    const BarPanels& m_panels;
    const LauncherPresenter& m_launcher;
    std::map<Key, Hiding> m_bars; ///< none while bars do not hide
    std::map<DisplayNumber, Asking> m_asking; ///< for attention, on any space of the display
    Subscription m_itemsChange;
    Subscription m_showingDesktopChange;
    Subscription m_hide;
    Subscription m_unhide;
};

}
