#include "Quorvel/Views/WindowFinderPanel.h"

#include <utility>

namespace quorvel {

WindowFinderPanel::WindowFinderPanel(const Platform& given, Menus& menus,
    const PanelOptions& options, const WindowFinderContents& contents)
    : SearchPanel(given, menus, options, contents.onDismiss)
{
    auto content = std::make_unique<WindowFinderContent>(
        SearchPanelContent::Inputs{platform(), surface(), contents.settings}, contents.windowFinder,
        contents.thumbnailService, contents.space);
    m_content = content.get();
    // The keyboard is given back first, so that it is not taken from the window again. A copy is in
    // menus, which may outlive the panel.
    content->onWindowChosen
        = [dismiss = dismissal(), choose = contents.onWindowChosen](WindowID window) {
              dismiss();
              if (choose)
                  choose(window);
          };
    content->onWindowBrought
        = [dismiss = dismissal(), bring = contents.onWindowBrought](WindowID window, SpaceID from) {
              dismiss();
              if (bring)
                  bring(window, from);
          };
    setContent(std::move(content));
}

}
