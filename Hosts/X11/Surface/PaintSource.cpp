#include "Hosts/X11/Surface/PaintSource.h"

#include <chrono>
#include <utility>

#include <glib.h>

#include "Hosts/Linux/Loop/SourceTime.h"
#include "Hosts/Linux/Loop/WorkSchedule.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr auto kShortestFrame = std::chrono::milliseconds{8};

}

struct PaintSource::Source : GSource {
    PaintSource* owner;

    static gboolean prepare(GSource* source, gint* timeout)
    {
        return isDueOrSleeps(static_cast<Source*>(source)->owner->due(), *timeout);
    }

    static gboolean check(GSource* source)
    {
        auto due = static_cast<Source*>(source)->owner->due();
        return due && *due <= WorkSchedule::now();
    }

    static gboolean dispatch(GSource* source, GSourceFunc, gpointer)
    {
        auto* owner = static_cast<Source*>(source)->owner;
        owner->m_isRequested = false;
        owner->m_earliestNext = WorkSchedule::now() + kShortestFrame;
        owner->m_paint();
        return G_SOURCE_CONTINUE;
    }
};

PaintSource::PaintSource(std::function<void()> paint) : m_paint(std::move(paint))
{
    static GSourceFuncs functions{
        &Source::prepare, &Source::check, &Source::dispatch, nullptr, nullptr, nullptr};
    m_source.reset(reinterpret_cast<Source*>(g_source_new(&functions, sizeof(Source))));
    m_source->owner = this;
    g_source_set_static_name(m_source.get(), "paint");
    // The same priority as the rest and attached later than the connection and the main queue: it
    // comes after them in each round, and no flood of events can starve it.
    g_source_attach(m_source.get(), nullptr);
}

PaintSource::~PaintSource() = default;

void PaintSource::request()
{
    m_isRequested = true;
}

std::optional<Instant> PaintSource::due() const
{
    return m_isRequested ? std::optional{m_earliestNext} : std::nullopt;
}

}
