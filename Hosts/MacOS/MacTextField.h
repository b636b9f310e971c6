#pragma once

#include "Hosts/MacOS/Cocoa.h"
#include "Quorvel/Platform/NativeTextField.h"

@class QVTextField;
@class QVTextFieldDelegate;

namespace quorvel {

/// An NSTextField without border or background, laid over a surface's view.
class MacTextField final : public NativeTextField {
public:
    MacTextField(NSView* over, NativeTextFieldClient&);
    ~MacTextField() override;
    MacTextField(const MacTextField&) = delete;
    MacTextField& operator=(const MacTextField&) = delete;

    void setFrame(const Rect&) override;
    void setStyle(const TextStyle&) override;
    void setPlaceholder(std::string_view utf8) override;
    void setText(std::string_view utf8) override;
    void setFocused(bool) override;

private:
    void place();

    QVTextField* m_field;
    QVTextFieldDelegate* m_delegate; ///< the field does not retain it
    NSView* m_over;
    Rect m_frame;
};

}
