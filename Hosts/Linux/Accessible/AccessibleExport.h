#pragma once

#include <memory>

#include "Hosts/Linux/Accessible/AccessibleNode.h"
#include "Hosts/Linux/Accessible/AssistiveWatch.h"
#include "Quorvel/Platform/Dispatch.h"

namespace quorvel::xdg {

struct PanelEnvironment;

/// Shows the surfaces to assistive programs, from the moment one wants to see them. The changes of
/// a turn are reported at its end. Main thread; one at a time, since ATK knows one root.
class AccessibleExport {
public:
    AccessibleExport(Dispatch&, const AccessibleSurfaces&, const PanelEnvironment&);
    ~AccessibleExport();
    AccessibleExport(const AccessibleExport&) = delete;
    AccessibleExport& operator=(const AccessibleExport&) = delete;

private:
    void begin();
    void end();
    void scheduleAnnouncement();

    Dispatch& m_dispatch;
    const AccessibleSurfaces& m_surfaces;
    const PanelEnvironment& m_environment;
    const AtkLibrary* m_atk = nullptr;
    std::unique_ptr<AccessibleNode> m_application; ///< only while it is exported
    Subscription m_changed;
    Subscription m_spaceChanged;
    WorkItem m_announcement;
    AssistiveWatch m_watch;
};

}
