#pragma once

#include <string>
#include <utility>

#include "Quorvel/Platform/NativeTextField.h"

namespace quorvel::test {

/// A text field of the system, in which a test can type.
class FakeTextField final : public NativeTextField {
public:
    /// The slot says which field there is, as long as it exists.
    FakeTextField(NativeTextFieldClient& client, FakeTextField*& slot)
        : m_client(client)
        , m_slot(slot)
    {
        m_slot = this;
    }
    ~FakeTextField() override { m_slot = nullptr; }
    FakeTextField(const FakeTextField&) = delete;
    FakeTextField& operator=(const FakeTextField&) = delete;

    void setFrame(const Rect& frame) override { m_frame = frame; }
    void setStyle(const TextStyle& style) override { m_style = style; }
    void setPlaceholder(std::string_view utf8) override { m_placeholder = utf8; }
    void setText(std::string_view utf8) override { m_text = utf8; }
    void setFocused(bool isFocused) override
    {
        if (std::exchange(m_isFocused, isFocused) != isFocused)
            m_client.fieldFocusDidChange(isFocused);
    }

    /// Replaces the text as the user does.
    void type(std::string utf8)
    {
        m_text = std::move(utf8);
        m_client.fieldTextDidChange(m_text);
    }

    const Rect& frame() const { return m_frame; }
    const TextStyle& style() const { return m_style; }
    const std::string& text() const { return m_text; }
    const std::string& placeholder() const { return m_placeholder; }
    bool isFocused() const { return m_isFocused; }

private:
    NativeTextFieldClient& m_client;
    FakeTextField*& m_slot;
    Rect m_frame;
    TextStyle m_style;
    std::string m_text;
    std::string m_placeholder;
    bool m_isFocused = false;
};

}
