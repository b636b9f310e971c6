#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Quorvel/Core/LauncherPanel.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Views/Kit/ListView.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

class AppLauncherPlaceholder;
class AppLauncherSearchField;
class BarBackground;
class LabelView;

/// What is on a panel to search in: its title, the search field, and below it the list or what
/// stands in for it. Which rows there are is decided by those who derive from it. Main thread.
class SearchPanelContent : public View {
public:
    /// All of it outlives the view.
    struct Inputs {
        const Platform& platform;
        PanelSurface& surface;
        const UserSettings& settings;
    };

    ~SearchPanelContent() override;

    /// Opens a menu beside the rectangle, in the view's coordinates.
    std::function<void(Menu, const Rect& anchor)> onMenuRequested;
    /// Keys that no view has used. True: this one is used.
    std::function<bool(const KeyEvent&)> onKey;

    /// Down (1) or up (-1); stops at the ends.
    void moveSelection(int side);
    void moveSelectionByPage(int side);
    virtual void openSelected() = 0;
    void showMenuOfSelected();
    /// False if there is no query.
    bool clearQuery();
    /// The key types text, which belongs to the field wherever the keyboard is.
    bool takeTyping(const KeyEvent&);
    /// The field is one of the system's own.
    bool hasSystemField() const;
    void flashScroller();

    Rect fieldFrame() const;
    Rect clearButtonFrame() const;
    virtual const std::string& query() const = 0;

    /// Anywhere on the panel.
    bool scrolled(const ScrollEvent& event) override { return m_list->scrolled(event); }
    View* preferredKeyView() override;
    bool keyPressed(const KeyEvent&) override;
    TextInputClient* textInput() override;
    bool takesPointer() const override { return true; }
    bool isAccessible() const override { return true; }
    bool takesKeyboard() const override { return false; }
    AccessibleState accessibleState() const override;

protected:
    /// What differs from one panel to another.
    struct Texts {
        std::string title;
        std::string placeholder; ///< of the search field
    };

    SearchPanelContent(const Inputs&, Texts);

    const Inputs& inputs() const { return m_inputs; }
    const Palette& palette() const { return m_palette; }
    const ListView& list() const { return *m_list; }
    ListView& list() { return *m_list; }
    /// The list, and the view that it fills, which is a child of this one. Call once, before the
    /// next ones.
    void setList(View& holder, ListView&);
    /// The list is shown, or else a text in its place, below the symbol of what is being waited
    /// for if there is one.
    void showList();
    void showMessage(std::string text);
    void showWaiting(std::string text);
    void keep(Subscription subscription) { m_subscriptions.push_back(std::move(subscription)); }
    /// The parts in sight of these rows, in the root's coordinates.
    struct ShownRow {
        ListView::Row row = 0;
        Rect frame;
    };
    std::vector<ShownRow> shownRows() const;

private:
    virtual void queryDidChange(const std::string&) = 0;
    /// Before the field has it. True: it is used.
    virtual bool useKey(const KeyEvent&) { return false; }
    virtual void directionDidChange(bool isRightToLeft) = 0;

    bool isColumn() const override { return true; }
    void layout() override;
    void paint(Canvas&) const override;
    void setListShown(bool);
    void appearanceDidChange();

    const Inputs m_inputs;
    const Texts m_texts;
    Palette m_palette; ///< the views below point at it
    bool m_isListShown = false; ///< else the placeholder is
    BarBackground* m_background = nullptr;
    LabelView* m_title = nullptr;
    AppLauncherSearchField* m_searchField = nullptr;
    View* m_listHolder = nullptr;
    ListView* m_list = nullptr;
    AppLauncherPlaceholder* m_placeholder = nullptr;
    std::vector<Subscription> m_subscriptions;
};

}
