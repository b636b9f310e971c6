#pragma once

#include <cstddef>
#include <deque>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "Quorvel/Core/AppInfo.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Image.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/WeakOwner.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

/// The icons of the catalogue's rows, each rendered when it is first asked for, on a queue of its
/// own. What was asked for last comes first, since it is what the user sees. Main thread.
class AppIcons {
public:
    /// Points on a side.
    static constexpr double kSide = 32;
    /// The limit for the pixels of all; the least recently used go first.
    static constexpr std::size_t kMostBytes = 2U << 20;
    /// The newest requests; older ones were scrolled past, and nobody waits for them any more.
    static constexpr std::size_t kMostWanted = 64;

    AppIcons(Workspace&, Dispatch&);
    /// Waits for an icon that is being rendered.
    ~AppIcons();

    /// Null until it has been rendered for this scale: `didArrive` tells when. Ask each time the
    /// row is drawn, and do not keep it.
    Image icon(const AppInfo&, double scale);
    /// Emitted with the application's id when its icon is there, or may have changed; with an empty
    /// one when all may have.
    Signal<std::string> didArrive;

    /// What was rendered may be out of date: it is shown until it has been rendered anew.
    void refreshAll();

    /// Of all that is kept.
    std::size_t bytes() const { return m_bytes; }

private:
    struct Request {
        std::string id;
        ApplicationURL path;
        int pixels = 0;
    };
    struct Icon {
        std::string id;
        std::string path;
        int pixels = 0;
        Image image;
        std::size_t bytes = 0;
        bool isCurrent = true;
    };
    using Key = std::pair<std::string, int>; ///< the path, and pixels

    void want(Request);
    void renderNext();
    void didRender(const Request&, const std::optional<IconPicture>&);
    void keep(const Request&, const IconPicture&);
    void forget(const Key&);
    void refresh(const std::string& id);

    Workspace& m_workspace;
    Dispatch& m_dispatch;
    std::list<Icon> m_icons; ///< the most recently used comes first
    std::map<Key, std::list<Icon>::iterator> m_byKey;
    std::size_t m_bytes = 0;
    std::deque<Request> m_wanted; ///< the latest comes first
    std::optional<Key> m_rendering;
    bool m_isOutdated = false; ///< what is being rendered
    Subscription m_changes;
    WeakOwner<AppIcons> m_weak{*this};
    std::unique_ptr<Queue> m_queue; ///< last: it is drained before what its work uses goes
};

}
