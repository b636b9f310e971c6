#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "Quorvel/Core/WindowFinder.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Views/Kit/ListView.h"

namespace quorvel {

class ThumbnailService;
class WindowRowView;

/// The rows of the list of windows, and their pictures. Main thread.
class WindowFinderRows final : public ListRows {
public:
    /// Both outlive it.
    WindowFinderRows(ThumbnailService&, const Palette&);
    ~WindowFinderRows() override;

    /// The list that it fills. Call once.
    void setList(ListView& list) { m_list = &list; }
    void setRightToLeft(bool);

    std::function<void(WindowID)> onTapped;
    std::function<void(WindowID)> onCloseRequested;
    std::function<void(WindowID, const Rect& anchor)> onMenu;

    const std::vector<FoundWindow>& windows() const { return m_windows; }
    /// Absent while there is none.
    std::optional<WindowID> selected() const;
    enum class Selection {
        kept, ///< with its window, else in its place
        first,
        second, ///< the first if there is no other
    };
    /// A name for each space that is to be told.
    void setWindows(std::vector<FoundWindow>, std::map<SpaceID, std::string> names, Selection);

    std::size_t rowCount() const override { return m_windows.size(); }
    double rowHeight(std::size_t row) const override;
    bool isSelectable(std::size_t) const override { return true; }
    int rowKind(std::size_t) const override { return 0; }
    std::unique_ptr<ListRowView> makeRowView(int kind) override;
    void fillRowView(ListRowView&, std::size_t row) override;

private:
    void select(Selection, std::optional<WindowID> before, std::size_t placeBefore);
    void askForPicture(WindowID);
    void pictureDidArrive(WindowID);

    ThumbnailService& m_thumbnailService;
    const Palette& m_palette;
    ListView* m_list = nullptr;
    std::vector<FoundWindow> m_windows;
    std::map<SpaceID, std::string> m_names;
    bool m_isRightToLeft = false;
    std::map<WindowID, Subscription> m_pictures; ///< of each window that has been in sight
};

}
