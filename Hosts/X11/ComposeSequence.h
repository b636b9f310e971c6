#pragma once

#include <cstdint>
#include <optional>
#include <string>

struct xkb_compose_state;

namespace quorvel::xdg::x11 {

struct XkbLibrary;

/// Dead keys and the Compose key: several presses that type one text, by the table of the user's
/// locale (or of `XCOMPOSEFILE`, `~/.config/XCompose`, `~/.XCompose`). Main thread.
class ComposeSequence {
public:
    /// Where there is no table, every key stands for itself.
    explicit ComposeSequence(const XkbLibrary&);
    ~ComposeSequence();
    ComposeSequence(const ComposeSequence&) = delete;
    ComposeSequence& operator=(const ComposeSequence&) = delete;

    enum class Step {
        none, ///< the key stands for itself, and no sequence is open
        pending, ///< it began or continued a sequence, or is a modifier within one
        done, ///< it completed one: `text`
        broken, ///< it does not continue the open sequence, which is dropped
    };
    Step feed(std::uint32_t symbol);
    bool isOpen() const { return m_isOpen; }
    /// What the open sequence looks like so far, in UTF-8: the accents without their letter.
    const std::string& preview() const { return m_preview; }
    /// What the completed sequence types, in UTF-8.
    std::string text() const;
    void reset();

private:
    Step advance(std::uint32_t symbol);
    std::string previewOf(std::uint32_t symbol) const;

    const XkbLibrary& m_xkb;
    xkb_compose_state* m_state = nullptr;
    bool m_isOpen = false;
    std::string m_preview;
};

}
