#pragma once

#include "Quorvel/Platform/Updater.h"

namespace quorvel::test {

class FakeUpdater final : public Updater {
public:
    void start() override { ++m_starts; }
    void checkForUpdates() override { ++m_checks; }
    const Published<bool>& canCheckForUpdates() const override { return m_canCheck; }

    void setCanCheck(bool value) { m_canCheck.set(value); }
    int starts() const { return m_starts; }
    int checks() const { return m_checks; }

private:
    Published<bool> m_canCheck;
    int m_starts = 0;
    int m_checks = 0;
};

}
