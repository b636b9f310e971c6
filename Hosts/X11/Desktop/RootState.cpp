#include "Hosts/X11/Desktop/RootState.h"

#include <algorithm>
#include <array>
#include <utility>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/RequestBatch.h"

namespace quorvel::xdg::x11 {

RootState::RootState(Connection& connection) : m_connection(connection)
{
}

bool RootState::propertyDidChange(xcb_atom_t property)
{
    auto& atoms = m_connection.atoms();
    const std::array<std::pair<xcb_atom_t, Bit>, 7> table{{
        {atoms.netClientList, clientsBit},
        {atoms.netActiveWindow, activeBit},
        {atoms.netCurrentDesktop, currentBit},
        {atoms.netNumberOfDesktops, countBit},
        {atoms.netDesktopNames, namesBit},
        {atoms.netShowingDesktop, showingBit},
        {atoms.netSupported, supportedBit},
    }};
    for (auto& [atom, bit] : table) {
        if (atom != property)
            continue;
        m_stale |= bit;
        return true;
    }
    return false;
}

void RootState::request(RequestBatch& batch)
{
    auto stale = std::exchange(m_stale, 0);
    auto root = m_connection.root();
    auto& atoms = m_connection.atoms();
    if (stale & clientsBit) {
        m_listDidChange = true;
        batch.property(root, atoms.netClientList, limits::windows,
            [this](const RawProperty& raw) { m_clients = decodeWindows(raw); });
    }
    if (stale & stackingBit) {
        m_stackingDidChange = true;
        batch.children(
            root, [this](auto windows) { m_bottomToTop.assign(windows.begin(), windows.end()); });
    }
    if (stale & activeBit) {
        batch.property(root, atoms.netActiveWindow, 1, [this](const RawProperty& raw) {
            m_activeWindow = decodeWindow(raw).value_or(XCB_WINDOW_NONE);
        });
    }
    if (stale & showingBit) {
        batch.property(root, atoms.netShowingDesktop, 1, [this](const RawProperty& raw) {
            m_isShowingDesktop = decodeCardinal(raw).value_or(0) == 1;
            ++m_showingDesktopReads[m_isShowingDesktop];
        });
    }
    if (stale & supportedBit)
        requestSwitches(batch);
    requestDesktops(batch, stale);
}

void RootState::requestSwitches(RequestBatch& batch)
{
    batch.property(m_connection.root(), m_connection.atoms().netSupported, limits::features,
        [this](const RawProperty& raw) {
            auto switches = managerSwitches(m_connection.atoms(), decodeAtoms(raw));
            m_switchesDidChange |= std::exchange(m_switches, switches) != switches;
        });
}

void RootState::requestDesktops(RequestBatch& batch, unsigned stale)
{
    auto root = m_connection.root();
    auto& atoms = m_connection.atoms();
    if (stale & currentBit) {
        batch.property(root, atoms.netCurrentDesktop, 1,
            [this](const RawProperty& raw) { keepOrSet(m_currentDesktop, decodeCardinal(raw)); });
    }
    if (stale & countBit) {
        batch.property(root, atoms.netNumberOfDesktops, 1,
            [this](const RawProperty& raw) { keepOrSet(m_desktopCount, decodeCardinal(raw)); });
    }
    if (stale & namesBit) {
        batch.property(
            root, atoms.netDesktopNames, limits::desktopNames, [this](const RawProperty& raw) {
                m_desktopNames
                    = decodeTexts(raw, textTypes(m_connection.atoms()), limits::desktops);
            });
    }
}

void RootState::keepOrSet(
    std::optional<std::uint32_t>& target, std::optional<std::uint32_t> value) const
{
    if (value || !m_keepsLastWords)
        target = value;
}

std::uint32_t RootState::desktopCount() const
{
    return std::clamp<std::uint32_t>(m_desktopCount.value_or(1), 1, limits::desktops);
}

}
