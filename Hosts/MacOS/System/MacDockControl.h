#pragma once

#include "Hosts/MacOS/System/PrivateSymbols.h"
#include "Quorvel/Platform/DockControl.h"

namespace quorvel {

/// The Dock through its private calls, and its preferences, which are those of "com.apple.dock".
class MacDockControl final : public DockControl, public Preferences {
public:
    /// False where one of the private calls is missing; then nothing of it may be called.
    static bool isAvailable(const PrivateSymbols&);

    explicit MacDockControl(const PrivateSymbols& symbols) : m_symbols(symbols) { }

    bool isAutoHideEnabled() const override;
    void setAutoHideEnabled(bool) override;
    bool isAtBottom() const override;
    Preferences* preferences() override { return this; }
    void restart() override;

    Value value(const std::string& key) const override;
    void setDouble(const std::string& key, double) override;
    void setBool(const std::string& key, bool) override;
    void synchronise() override;

private:
    PrivateSymbols m_symbols;
};

}
