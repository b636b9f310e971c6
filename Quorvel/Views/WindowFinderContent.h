#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Quorvel/Core/WindowFinder.h"
#include "Quorvel/Views/SearchPanelContent.h"
#include "Quorvel/Views/WindowFinderRows.h"

namespace quorvel {

/// What is on the panel that lists the open windows. While it is open, rows hold still: windows
/// that go leave the list, new ones come to its end. Main thread.
class WindowFinderContent final : public SearchPanelContent {
public:
    /// All of it outlives the view, which is on that space.
    WindowFinderContent(const Inputs&, WindowFinder&, ThumbnailService&, SpaceID);
    ~WindowFinderContent() override;

    std::function<void(WindowID)> onWindowChosen;
    /// From another space to that of the view.
    std::function<void(WindowID, SpaceID from)> onWindowBrought;

    void openSelected() override;

    /// A row that is at least partly in sight.
    struct RowPlace {
        WindowID window{};
        bool isSelected = false;
        Rect frame; ///< the visible part; points from the top left of the panel
    };
    std::vector<RowPlace> rowPlaces() const;
    const std::string& query() const override { return m_query; }

    std::string accessibleID() const override { return "windows"; }

private:
    using Selection = WindowFinderRows::Selection;

    void queryDidChange(const std::string&) override;
    void directionDidChange(bool isRightToLeft) override { m_rows->setRightToLeft(isRightToLeft); }
    bool useKey(const KeyEvent&) override;
    void windowsDidChange();
    void updateRows(Selection);
    Selection selectionAtTop() const;
    std::map<SpaceID, std::string> spaceNames() const;
    bool useCloseKey(const KeyEvent&);
    bool useBringKey(const KeyEvent&);
    void closeWindow(WindowID);
    /// Goes to it where it is here already.
    void bringSelected();
    const FoundWindow* window(WindowID) const;
    void showMenu(WindowID, const Rect& anchor);

    WindowFinder& m_windowFinder;
    const SpaceID m_space;
    std::string m_query;
    std::vector<FoundWindow> m_windows; ///< all of them, in the order of the list
    std::unique_ptr<WindowFinderRows> m_rows;
};

}
