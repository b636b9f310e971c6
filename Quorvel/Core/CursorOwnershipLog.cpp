#include "Quorvel/Core/CursorOwnershipLog.h"

#include "Quorvel/Core/BarPanels.h"

namespace quorvel {

CursorOwnershipLog::CursorOwnershipLog(
    Surfaces& surfaces, const Displays& displays, const BarPanels& panels, const Trace& trace)
    : m_displays(displays)
    , m_panels(panels)
    , m_trace(trace)
    , m_localMonitor(surfaces.monitorPointer(PointerScope::ownWindows, [this] { write("local"); }))
    , m_globalMonitor(
          surfaces.monitorPointer(PointerScope::otherPrograms, [this] { write("global"); }))
{
}

void CursorOwnershipLog::write(std::string_view source)
{
    if (!m_trace.isOn())
        return;
    auto signature = fmt::format("cursorOwnership source={} {}", source, owner());
    if (signature == m_lastSignature)
        return;
    m_lastSignature = std::move(signature);
    m_trace.line("{}", m_lastSignature);
}

std::string CursorOwnershipLog::owner() const
{
    auto screens = m_displays.screens();
    auto pointer = m_displays.pointerLocation();
    for (auto* bar : m_panels.bars()) {
        bool isOver = !screens.empty() && bar->surface().isVisible()
            && bar->surface().frame().flipped(screens.front().frame.height).contains(pointer);
        if (isOver)
            return fmt::format("space={} screen={}", raw(bar->spaceID()), bar->screenIndex());
    }
    return "space=nil screen=nil";
}

}
