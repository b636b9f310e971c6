#pragma once

#include "Quorvel/Platform/SettingsWindow.h"

namespace quorvel::test {

class FakeSettingsWindow final : public SettingsWindow {
public:
    bool show(SettingsSource& source) override
    {
        m_source = &source;
        ++m_shows;
        return m_canShow;
    }

    bool replace(SettingsSource& source) override
    {
        ++m_replacements;
        return show(source);
    }
    void close() override { m_source = nullptr; }

    void setCanShow(bool value) { m_canShow = value; }
    int shows() const { return m_shows; }
    int replacements() const { return m_replacements; }
    /// What it shows; null before it was first shown, and once it has been closed.
    SettingsSource* source() const { return m_source; }

private:
    SettingsSource* m_source = nullptr;
    int m_shows = 0;
    int m_replacements = 0;
    bool m_canShow = true;
};

}
