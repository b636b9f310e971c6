#include "Hosts/X11/Desktop/ShowingDesktop.h"

#include <utility>

#include "Hosts/X11/Desktop/Clients.h"

namespace quorvel::xdg::x11 {

void ShowingDesktop::update(bool isShowing, Clients& clients, Instant now)
{
    if (std::exchange(m_isShowing, isShowing) == isShowing)
        return;
    clients.forEach([&](Client& client) {
        if (isShowing && client.minimizedSettlesAt) {
            client.minimizedSettlesAt.reset();
            client.isHiddenByShowingDesktop = true;
        } else if (!isShowing && std::exchange(client.isHiddenByShowingDesktop, false)) {
            client.minimizedSettlesAt = now + kSettles;
            client.isDirty = true;
        }
    });
}

void ShowingDesktop::update(Client& client, Instant now) const
{
    bool isHidden = client.state.isHidden && !client.state.isShaded;
    bool wasHidden = std::exchange(client.wasHidden, isHidden);
    if (!isHidden) {
        client.isHiddenByShowingDesktop = false;
        client.minimizedSettlesAt.reset();
    } else if (!wasHidden && m_isShowing) {
        client.isHiddenByShowingDesktop = true;
    } else if (!wasHidden && client.isAnnounced) {
        client.minimizedSettlesAt = now + kSettles;
    }
    if (client.minimizedSettlesAt && now >= *client.minimizedSettlesAt)
        client.minimizedSettlesAt.reset();
    client.isMinimized = isHidden && !client.isHiddenByShowingDesktop && !client.minimizedSettlesAt;
}

}
