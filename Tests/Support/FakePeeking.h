#pragma once

#include <optional>
#include <set>
#include <vector>

#include "Quorvel/Platform/Peeking.h"

namespace quorvel::test {

/// Which window is shown alone.
class FakePeeking final : public Peeking {
public:
    bool showAlone(WindowID window) override
    {
        m_asked.push_back(window);
        m_alone = m_hidden.contains(window) ? std::nullopt : std::optional{window};
        return m_alone.has_value();
    }
    void showAll() override { m_alone.reset(); }

    /// It cannot be shown.
    void hide(WindowID window) { m_hidden.insert(window); }

    const std::optional<WindowID>& alone() const { return m_alone; }
    const std::vector<WindowID>& asked() const { return m_asked; }

private:
    std::optional<WindowID> m_alone;
    std::vector<WindowID> m_asked;
    std::set<WindowID> m_hidden;
};

}
