#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Hosts/Linux/DesktopLooks.h"
#include "Quorvel/Platform/Image.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg {

class DesktopEntries;
class IconTheme;
class PixelBudget;

/// One size of a picture as `_NET_WM_ICON` carries it: rows from the top, straight alpha.
struct IconPixels {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> argb;
};

/// Pictures of applications, as images that this host's canvas draws (`IconImage`). Files are
/// looked for when a name is asked, and read when a picture is first drawn. Main thread.
class Icons {
public:
    /// What the pixels of all icons may take: enough for a bar of hundreds of chips.
    static constexpr std::size_t kPixelBytes = 4 << 20;

    explicit Icons(DesktopEntries&, std::size_t pixelBytes = kPixelBytes);
    ~Icons();
    Icons(const Icons&) = delete;
    Icons& operator=(const Icons&) = delete;

    /// Looks in the icon theme that the desktop wants, and in another one when it wants another.
    void follow(const Published<DesktopLooks>&);
    /// Every icon may be another now.
    Signal<> themeDidChange;

    /// The icon that the desktop file names; empty when it names none or none is found.
    Image forEntry(std::string_view desktopFilePath);
    /// What a window gave; empty when no size of it is usable. Pixels that had to go are asked for
    /// again when they are drawn.
    Image fromPixels(
        const std::vector<IconPixels>&, std::function<std::vector<IconPixels>()> reload = {});
    /// The theme's picture of a program, else our own; never empty.
    Image generic();

private:
    Image named(const std::string& nameOrPath);
    Image makeNamed(const std::string& nameOrPath);
    void forget();
    void setTheme(const std::string& name);

    DesktopEntries& m_entries;
    const std::shared_ptr<PixelBudget> m_budget;
    std::unique_ptr<IconTheme> m_theme;
    std::map<std::string, std::weak_ptr<const PlatformImage>> m_images; ///< by name or path
    Image m_generic;
    std::string m_themeName; ///< empty: the user's own files say
    Subscription m_entriesChanged;
    Subscription m_looksChanged;
};

}
