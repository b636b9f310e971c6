#pragma once

#include <functional>
#include <string>

#include "Quorvel/Views/Kit/TextFieldView.h"

namespace quorvel {

class ButtonView;

/// What the user of a list types into: a symbol, the text, and a button that empties it while
/// there is any.
class AppLauncherSearchField final : public View {
public:
    /// All of it outlives the view.
    AppLauncherSearchField(const TextFieldView::Inputs&, std::string placeholder);
    ~AppLauncherSearchField() override;

    /// By the user, or by `clear`.
    std::function<void(const std::string&)> onTextChanged;

    TextFieldView& field() { return *m_field; }
    const TextFieldView& field() const { return *m_field; }
    void clear();
    void setRightToLeft(bool);
    /// Empty while there is nothing to empty; in the root's coordinates.
    Rect clearButtonFrame() const;

    bool takesPointer() const override { return true; }
    void pointerPressed(const PointerPress&) override;

private:
    class ClearButton;

    void layout() override;
    void paint(Canvas&) const override;
    void textDidChange(const std::string&);

    const Palette& m_palette;
    TextFieldView* m_field;
    ClearButton* m_clearButton;
    bool m_isRightToLeft = false;
};

}
