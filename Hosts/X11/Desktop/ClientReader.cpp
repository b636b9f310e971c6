#include "Hosts/X11/Desktop/ClientReader.h"

#include <array>
#include <utility>

#include <xcb/res.h>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/RequestBatch.h"
#include "Hosts/X11/Desktop/SwitchAtoms.h"

namespace quorvel::xdg::x11 {

ClientReader::ClientReader(Connection& connection) : m_connection(connection)
{
    auto* extension = xcb_get_extension_data(connection.raw(), &xcb_res_id);
    m_hasClientProcesses = extension && extension->present;
}

Facets ClientReader::facetsOf(xcb_atom_t property) const
{
    auto& atoms = m_connection.atoms();
    const std::array<std::pair<xcb_atom_t, Facets>, 17> table{{
        {atoms.netWmName, Facet::netName},
        {atoms.wmName, Facet::wmName},
        {atoms.netWmState, Facet::state},
        {atoms.netWmAllowedActions, Facet::allowedActions},
        {atoms.netWmDesktop, Facet::desktop},
        {atoms.netFrameExtents, Facet::frameExtents},
        {atoms.gtkFrameExtents, Facet::gtkExtents},
        {atoms.wmHints, Facet::hints},
        {atoms.wmTransientFor, Facet::parent},
        {atoms.netWmWindowType, Facet::type},
        {atoms.netWmWindowOpacity, Facet::opacity},
        {atoms.wmClass, Facet::windowClass},
        {atoms.wmWindowRole, Facet::role},
        {atoms.gtkApplicationId, Facet::applicationID},
        {atoms.netWmPid, Facet::process},
        {atoms.netWmStrut, Facet::strut},
        {atoms.netWmStrutPartial, Facet::strut},
    }};
    for (auto& [atom, facets] : table) {
        if (atom == property)
            return facets;
    }
    return {};
}

void ClientReader::request(RequestBatch& batch, Client& client, Facets wanted) const
{
    auto facets = client.stale & wanted;
    if (facets.isEmpty())
        return;
    client.isDirty = true;
    client.stale = client.stale.without(facets);
    requestNames(batch, client, facets);
    requestIdentity(batch, client, facets);
    requestRole(batch, client, facets);
    requestGeometry(batch, client, facets);
}

void ClientReader::requestNames(RequestBatch& batch, Client& client, Facets facets) const
{
    auto& atoms = m_connection.atoms();
    if (facets.contains(Facet::netName)) {
        batch.property(client.window, atoms.netWmName, limits::text, [&](const RawProperty& raw) {
            client.netName = decodeText(raw, textTypes(atoms));
            if (!client.netName && !client.wmName)
                client.stale |= Facet::wmName;
        });
    }
    // Most clients write both names; the old one counts only where the new one is missing.
    bool isFirst = facets.contains(Facet::process);
    if (facets.contains(Facet::wmName) && (isFirst || !client.netName)) {
        batch.property(client.window, atoms.wmName, limits::text, [&](const RawProperty& raw) {
            client.wmName = decodeText(raw, textTypes(atoms));
            if (!client.wmName)
                client.wmName = std::string{};
        });
    } else if (facets.contains(Facet::wmName)) {
        client.wmName.reset();
    }
}

void ClientReader::requestIdentity(RequestBatch& batch, Client& client, Facets facets) const
{
    auto& atoms = m_connection.atoms();
    if (facets.contains(Facet::windowClass)) {
        batch.property(client.window, atoms.wmClass, limits::text, [&](const RawProperty& raw) {
            client.windowClass = decodeClass(raw, textTypes(atoms)).value_or(WindowClass{});
        });
    }
    if (facets.contains(Facet::role)) {
        batch.property(client.window, atoms.wmWindowRole, limits::text,
            [&](const RawProperty& raw) { client.role = decodeText(raw, textTypes(atoms)); });
    }
    if (facets.contains(Facet::applicationID)) {
        batch.property(
            client.window, atoms.gtkApplicationId, limits::text, [&](const RawProperty& raw) {
                client.applicationID = decodeText(raw, textTypes(atoms));
            });
    }
    if (!facets.contains(Facet::process))
        return;

    // A list may name a window that has ended, and these questions find another one that was given
    // its number since: nobody listens to that one, which will be listed in its turn.
    batch.eventMask(client.window, [&](auto mask) {
        client.isGone |= (mask.value_or(0) & XCB_EVENT_MASK_STRUCTURE_NOTIFY) == 0;
    });
    batch.parent(
        client.window, [&](auto parent) { client.container = parent.value_or(XCB_WINDOW_NONE); });
    if (m_hasClientProcesses)
        batch.clientProcess(client.window, [&](auto pid) { client.serverProcess = pid; });
    batch.property(client.window, atoms.netWmPid, 1,
        [&](const RawProperty& raw) { client.claimedProcess = decodeCardinal(raw); });
    batch.property(client.window, atoms.wmClientMachine, limits::text,
        [&](const RawProperty& raw) { client.machine = decodeText(raw, textTypes(atoms)); });
}

void ClientReader::requestRole(RequestBatch& batch, Client& client, Facets facets) const
{
    auto& atoms = m_connection.atoms();
    auto window = client.window;
    if (facets.contains(Facet::type)) {
        batch.property(window, atoms.netWmWindowType, limits::atoms, [&](const RawProperty& raw) {
            client.type = typeOf(decodeAtoms(raw));
            if (client.type == WindowType::dock)
                client.stale |= Facet::strut;
        });
    }
    if (facets.contains(Facet::state)) {
        batch.property(window, atoms.netWmState, limits::atoms,
            [&](const RawProperty& raw) { client.state = stateOf(decodeAtoms(raw)); });
    }
    if (facets.contains(Facet::allowedActions)) {
        batch.property(
            window, atoms.netWmAllowedActions, limits::atoms, [&](const RawProperty& raw) {
                client.allowed.reset();
                if (raw.type == XCB_ATOM_ATOM)
                    client.allowed = allowedSwitches(atoms, decodeAtoms(raw));
            });
    }
    if (facets.contains(Facet::desktop)) {
        batch.property(window, atoms.netWmDesktop, 1,
            [&](const RawProperty& raw) { client.desktop = decodeCardinal(raw); });
    }
    if (facets.contains(Facet::parent)) {
        batch.property(window, atoms.wmTransientFor, 1,
            [&](const RawProperty& raw) { client.parent = decodeWindow(raw); });
    }
    if (facets.contains(Facet::hints)) {
        batch.property(window, atoms.wmHints, 9, [&](const RawProperty& raw) {
            const auto hints = decodeHints(raw);
            client.hasOtherIcon |= !hints.hasIconOf(client.hints);
            client.hints = hints;
        });
    }
}

void ClientReader::requestGeometry(RequestBatch& batch, Client& client, Facets facets) const
{
    auto& atoms = m_connection.atoms();
    auto window = client.window;
    if (facets.contains(Facet::frameExtents)) {
        batch.property(window, atoms.netFrameExtents, 4, [&](const RawProperty& raw) {
            client.frameExtents = decodeExtents(raw).value_or(Extents{});
        });
    }
    if (facets.contains(Facet::gtkExtents)) {
        batch.property(window, atoms.gtkFrameExtents, 4, [&](const RawProperty& raw) {
            client.gtkExtents = decodeExtents(raw).value_or(Extents{});
        });
    }
    if (facets.contains(Facet::opacity)) {
        batch.property(window, atoms.netWmWindowOpacity, 1,
            [&](const RawProperty& raw) { client.opacity = decodeOpacity(raw); });
    }
    if (facets.contains(Facet::strut)) {
        // Older panels have only the first; where both are, the second counts.
        batch.property(window, atoms.netWmStrut, 4,
            [&](const RawProperty& raw) { client.strut = decodeStrut(raw).value_or(Extents{}); });
        batch.property(window, atoms.netWmStrutPartial, 12, [&](const RawProperty& raw) {
            client.strut = decodeStrut(raw).value_or(client.strut);
        });
    }
    if (!facets.contains(Facet::place))
        return;

    batch.place(window, m_connection.root(), [&](auto place) {
        if (place)
            client.place
                = {double(place->x), double(place->y), client.place.width, client.place.height};
    });
    batch.size(window, [&](auto size) {
        if (size)
            client.place = Rect::from(client.place.origin(), *size);
        else
            client.isGone = true;
    });
}

std::optional<WindowType> ClientReader::typeOf(const std::vector<xcb_atom_t>& list) const
{
    auto& atoms = m_connection.atoms();
    const std::array<std::pair<xcb_atom_t, WindowType>, 12> table{{
        {atoms.netWmWindowTypeNormal, WindowType::normal},
        {atoms.netWmWindowTypeDialog, WindowType::dialog},
        {atoms.netWmWindowTypeDock, WindowType::dock},
        {atoms.netWmWindowTypeDesktop, WindowType::desktop},
        {atoms.netWmWindowTypeUtility, WindowType::utility},
        {atoms.netWmWindowTypeSplash, WindowType::splash},
        {atoms.netWmWindowTypeToolbar, WindowType::toolbar},
        {atoms.netWmWindowTypeMenu, WindowType::menu},
        {atoms.netWmWindowTypePopupMenu, WindowType::menu},
        {atoms.netWmWindowTypeDropdownMenu, WindowType::menu},
        {atoms.netWmWindowTypeNotification, WindowType::notification},
        {atoms.netWmWindowTypeTooltip, WindowType::notification},
    }};
    for (auto atom : list) {
        for (auto& [known, type] : table) {
            if (atom == known && atom != XCB_ATOM_NONE)
                return type;
        }
    }
    return std::nullopt;
}

ClientState ClientReader::stateOf(const std::vector<xcb_atom_t>& list) const
{
    auto& atoms = m_connection.atoms();
    const std::array<std::pair<xcb_atom_t, bool ClientState::*>, 9> table{{
        {atoms.netWmStateHidden, &ClientState::isHidden},
        {atoms.netWmStateShaded, &ClientState::isShaded},
        {atoms.netWmStateModal, &ClientState::isModal},
        {atoms.netWmStateFullscreen, &ClientState::isFullScreen},
        {atoms.netWmStateMaximizedVert, &ClientState::isMaximizedVertically},
        {atoms.netWmStateMaximizedHorz, &ClientState::isMaximizedHorizontally},
        {atoms.netWmStateAbove, &ClientState::isKeptAbove},
        {atoms.netWmStateSkipTaskbar, &ClientState::skipsTaskbar},
        {atoms.netWmStateDemandsAttention, &ClientState::demandsAttention},
    }};
    ClientState state;
    for (auto atom : list) {
        for (auto& [known, flag] : table) {
            if (atom == known)
                state.*flag = true;
        }
    }
    return state;
}

}
