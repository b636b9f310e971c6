#pragma once

#include <map>

#include "Quorvel/Platform/Clipboard.h"
#include "Quorvel/Platform/Dispatch.h"

namespace quorvel::test {

/// What the programs of the desktop offer each other. Answers come with the next turn of the main
/// queue.
class FakeClipboard final : public Clipboard {
public:
    explicit FakeClipboard(Dispatch& dispatch) : m_dispatch(dispatch) { }

    void setText(ClipboardKind kind, std::string utf8) override { m_texts[kind] = std::move(utf8); }
    void requestText(ClipboardKind kind, TextHandler handler) override
    {
        m_dispatch.main().async(
            [text = this->text(kind), handler = std::move(handler)] { handler(text); });
    }

    /// Absent: nothing that is a text.
    std::optional<std::string> text(ClipboardKind kind) const
    {
        auto found = m_texts.find(kind);
        return found == m_texts.end() ? std::nullopt : std::optional{found->second};
    }
    void clear(ClipboardKind kind) { m_texts.erase(kind); }

private:
    Dispatch& m_dispatch;
    std::map<ClipboardKind, std::string> m_texts;
};

}
