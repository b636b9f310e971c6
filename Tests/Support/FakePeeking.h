#pragma once

#include <algorithm>
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
    bool fade(double by) override
    {
        m_faded = std::clamp(m_faded + (m_alone ? by : -by), 0.0, 1.0);
        return m_faded != (m_alone ? 1 : 0);
    }

    /// It cannot be shown.
    void hide(WindowID window) { m_hidden.insert(window); }

    const std::optional<WindowID>& alone() const { return m_alone; }
    const std::vector<WindowID>& asked() const { return m_asked; }
    /// The share of the way that the others have gone.
    double faded() const { return m_faded; }

private:
    std::optional<WindowID> m_alone;
    std::vector<WindowID> m_asked;
    double m_faded = 0;
    std::set<WindowID> m_hidden;
};

}
