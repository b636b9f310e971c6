#include "Hosts/X11/Surface/PaintSource.h"

#include <chrono>
#include <optional>
#include <utility>

#include <glib.h>

#include "Hosts/Linux/Loop/SourceTime.h"
#include "Hosts/Linux/Loop/WorkSchedule.h"

namespace quorvel::xdg::x11 {

namespace {

/// Longer than any frame: after it, nobody has to know how long one is.
constexpr auto kPause = std::chrono::milliseconds{50};

}

struct PaintSource::Source : GSource {
    PaintSource* owner;

    static gboolean prepare(GSource* source, gint* timeout)
    {
        auto* owner = static_cast<Source*>(source)->owner;
        return isDueOrSleeps(
            owner->m_isRequested ? std::optional{owner->m_frame} : std::nullopt, *timeout);
    }

    static gboolean check(GSource* source)
    {
        auto* owner = static_cast<Source*>(source)->owner;
        return owner->m_isRequested && owner->m_frame <= WorkSchedule::now();
    }

    static gboolean dispatch(GSource* source, GSourceFunc, gpointer)
    {
        auto* owner = static_cast<Source*>(source)->owner;
        owner->m_isRequested = false;
        if (g_source_get_priority(source) != G_PRIORITY_DEFAULT)
            g_source_set_priority(source, G_PRIORITY_DEFAULT);
        owner->m_paint();
        return G_SOURCE_CONTINUE;
    }
};

PaintSource::PaintSource(std::function<Duration()> frameInterval, std::function<void()> paint)
    : m_frameInterval(std::move(frameInterval))
    , m_paint(std::move(paint))
{
    static GSourceFuncs functions{
        &Source::prepare, &Source::check, &Source::dispatch, nullptr, nullptr, nullptr};
    m_source.reset(reinterpret_cast<Source*>(g_source_new(&functions, sizeof(Source))));
    m_source->owner = this;
    g_source_set_static_name(m_source.get(), "paint");
    // The same priority as the rest and attached later than the connection and the main queue: it
    // comes after them in each round but for one that is in a hurry, and no flood of events can
    // starve it.
    g_source_attach(m_source.get(), nullptr);
}

PaintSource::~PaintSource() = default;

void PaintSource::request()
{
    if (std::exchange(m_isRequested, true))
        return;
    auto now = WorkSchedule::now();
    if (now - m_frame > kPause) {
        m_frame = now;
        return;
    }
    auto interval = m_frameInterval();
    auto next = m_frame + interval;
    // A frame that comes a little late does not move those after it.
    m_frame = next + interval / 2 < now ? now : next;
}

void PaintSource::hurry()
{
    g_source_set_priority(m_source.get(), G_PRIORITY_HIGH);
}

}
