#include "Hosts/Linux/Accessible/AccessibleExport.h"

#include "Hosts/Linux/PanelEnvironment.h"
#include "Quorvel/Version.h"

namespace quorvel::xdg {

namespace {

/// ATK asks a function without an argument for the root.
AtkObject* g_root = nullptr;

void describeProgram(const AtkLibrary& atk)
{
    auto* program = static_cast<AtkUtilClass*>(g_type_class_ref(atk.utilType()));
    program->get_root = [] { return g_root; };
    program->get_toolkit_name = []() -> const char* { return "Quorvel"; };
    program->get_toolkit_version = []() -> const char* { return kVersion; };
}

}

AccessibleExport::AccessibleExport(
    Dispatch& dispatch, const AccessibleSurfaces& surfaces, const PanelEnvironment& environment)
    : m_dispatch(dispatch)
    , m_surfaces(surfaces)
    , m_environment(environment)
    , m_watch([this] { begin(); }, [this] { end(); })
{
}

AccessibleExport::~AccessibleExport()
{
    end();
}

void AccessibleExport::begin()
{
    if (!m_atk) {
        m_atk = AtkLibrary::load();
        if (!m_atk)
            return;
        describeProgram(*m_atk);
    }
    m_application = std::make_unique<AccessibleNode>(*m_atk, m_surfaces);
    g_root = m_application->object();
    if (m_atk->startBridge(nullptr, nullptr) != 0)
        return end();
    m_changed = m_surfaces.changed.subscribe([this] { scheduleAnnouncement(); });
    m_spaceChanged = m_environment.activeSpace.subscribe([this](auto&) { scheduleAnnouncement(); });
}

void AccessibleExport::end()
{
    if (!m_application)
        return;
    m_announcement = {};
    m_changed = m_spaceChanged = {};
    m_atk->endBridge();
    g_root = nullptr;
    m_application.reset();
}

/// The views may be in the middle of a change now.
void AccessibleExport::scheduleAnnouncement()
{
    if (m_announcement.isPending())
        return;
    m_announcement
        = m_dispatch.main().after(Duration::zero(), [this] { m_application->announceChanges(); });
}

}
