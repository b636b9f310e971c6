#pragma once

#include "Quorvel/Views/AppLauncherContent.h"
#include "Quorvel/Views/SearchPanel.h"

namespace quorvel {

/// The launcher on the screen: what is chosen in it is opened. Main thread.
class AppLauncherPanel final : public SearchPanel {
public:
    /// The platform, the menus and what the contents refer to outlive the panel.
    AppLauncherPanel(const Platform&, Menus&, const PanelOptions&, const LauncherContents&);

    AppLauncherContent& content() { return *m_content; }
    const AppLauncherContent& content() const { return *m_content; }

private:
    AppLauncherContent* m_content = nullptr;
};

}
