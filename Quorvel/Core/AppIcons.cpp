#include "Quorvel/Core/AppIcons.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quorvel {
namespace {

/// Of an entry without its pixels, more or less: what the system keeps itself counts too.
constexpr std::size_t kEntryBytes = 512;

}

AppIcons::AppIcons(Workspace& workspace, Dispatch& dispatch)
    : m_workspace(workspace)
    , m_dispatch(dispatch)
    , m_changes(workspace.iconDidChange.subscribe([this](const std::string& id) { refresh(id); }))
{
}

AppIcons::~AppIcons() = default;

Image AppIcons::icon(const AppInfo& app, double scale)
{
    const int pixels = std::max(1, static_cast<int>(std::lround(kSide * scale)));
    const auto found = m_byKey.find({app.path().path, pixels});
    if (found == m_byKey.end()) {
        want({app.id(), app.path(), pixels});
        return nullptr;
    }
    m_icons.splice(m_icons.begin(), m_icons, found->second);
    if (!found->second->isCurrent)
        want({app.id(), app.path(), pixels});
    return found->second->image;
}

void AppIcons::want(Request request)
{
    if (m_rendering == Key{request.path.path, request.pixels} && !m_isOutdated)
        return;
    std::erase_if(m_wanted, [&](const Request& other) {
        return other.path == request.path && other.pixels == request.pixels;
    });
    m_wanted.push_front(std::move(request));
    if (m_wanted.size() > kMostWanted)
        m_wanted.pop_back();
    renderNext();
}

void AppIcons::renderNext()
{
    if (m_rendering || m_wanted.empty())
        return;
    auto request = std::move(m_wanted.front());
    m_wanted.pop_front();
    m_rendering = Key{request.path.path, request.pixels};
    m_isOutdated = false;
    if (!m_queue)
        m_queue = m_dispatch.makeSerialQueue("com.quorvel.icons", QualityOfService::userInitiated);
    m_queue->async([&workspace = m_workspace, &dispatch = m_dispatch, weak = m_weak.reference(),
                       request = std::move(request)] {
        auto picture = workspace.renderIcon(request.path, request.pixels);
        dispatch.main().async([weak, request, picture = std::move(picture)] {
            if (auto* self = weak.get())
                self->didRender(request, picture);
        });
    });
}

void AppIcons::didRender(const Request& request, const std::optional<IconPicture>& picture)
{
    keep(request, picture ? *picture : IconPicture{m_workspace.icon(request.path), 0});
    m_rendering.reset();
    renderNext();
    didArrive.emit(request.id);
}

/// An application without any icon is kept too, or it would be looked for at each repaint.
void AppIcons::keep(const Request& request, const IconPicture& picture)
{
    const Key key{request.path.path, request.pixels};
    forget(key);
    const auto bytes = picture.bytes + kEntryBytes;
    m_icons.push_front({request.id, request.path.path, request.pixels,
        picture.image ? picture.image : m_workspace.genericApplicationIcon(), bytes,
        !m_isOutdated});
    m_byKey[key] = m_icons.begin();
    m_bytes += bytes;
    while (m_bytes > kMostBytes && m_icons.size() > 1)
        forget({m_icons.back().path, m_icons.back().pixels});
}

void AppIcons::forget(const Key& key)
{
    const auto found = m_byKey.find(key);
    if (found == m_byKey.end())
        return;
    m_bytes -= found->second->bytes;
    m_icons.erase(found->second);
    m_byKey.erase(found);
}

void AppIcons::refreshAll()
{
    refresh({});
}

void AppIcons::refresh(const std::string& id)
{
    m_isOutdated = m_rendering.has_value();
    for (auto& icon : m_icons) {
        if (id.empty() || icon.id == id)
            icon.isCurrent = false;
    }
    didArrive.emit(id);
}

}
