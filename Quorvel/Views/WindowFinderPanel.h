#pragma once

#include "Quorvel/Views/SearchPanel.h"
#include "Quorvel/Views/WindowFinderContent.h"

namespace quorvel {

/// The list of open windows on the screen: the one that is chosen gets the focus. Main thread.
class WindowFinderPanel final : public SearchPanel {
public:
    /// The platform, the menus and what the contents refer to outlive the panel.
    WindowFinderPanel(const Platform&, Menus&, const PanelOptions&, const WindowFinderContents&);

    const WindowFinderContent& content() const { return *m_content; }

private:
    WindowFinderContent* m_content = nullptr;
};

}
