#include "Hosts/X11/Surface/PaintSource.h"

#include <utility>

namespace quorvel::x11 {

struct PaintSource::Source : GSource {
    PaintSource* owner;

    static gboolean dispatch(GSource* source, GSourceFunc, gpointer)
    {
        auto* owner = static_cast<Source*>(source)->owner;
        owner->m_isRequested = false;
        g_source_set_ready_time(source, -1);
        owner->m_paint();
        return G_SOURCE_CONTINUE;
    }
};

PaintSource::PaintSource(std::function<void()> paint) : m_paint(std::move(paint))
{
    static GSourceFuncs functions{nullptr, nullptr, &Source::dispatch, nullptr, nullptr, nullptr};
    m_source = reinterpret_cast<Source*>(g_source_new(&functions, sizeof(Source)));
    m_source->owner = this;
    g_source_set_static_name(m_source, "paint");
    // The same priority as the rest and attached later than the connection and the main queue: it
    // comes after them in each round, and no flood of events can starve it.
    g_source_attach(m_source, nullptr);
}

PaintSource::~PaintSource()
{
    g_source_destroy(m_source);
    g_source_unref(m_source);
}

void PaintSource::request()
{
    if (std::exchange(m_isRequested, true))
        return;
    g_source_set_ready_time(m_source, 0);
}

}
