#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Hosts/Linux/DesktopLooks.h"
#include "Quorvel/Platform/Image.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel::xdg {

class DesktopEntries;
class IconPictures;
class IconTheme;
class PixelBudget;
struct IconCandidate;

/// One size of a picture as `_NET_WM_ICON` carries it: rows from the top, straight alpha.
struct IconPixels {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> argb;
};

/// Pictures of applications, as images that this host's canvas draws (`IconImage`). Files are
/// looked up when a name is requested, and read when a picture is first drawn: one that has yet to
/// be decoded is drawn as nothing until it arrives. Main thread, except where it says otherwise.
class Icons {
public:
    /// The limit for the pixels of all icons: enough for a bar of hundreds of chips.
    static constexpr std::size_t kPixelBytes = 4 << 20;

    /// The pictures outlive every image.
    Icons(DesktopEntries&, IconPictures&, std::size_t pixelBytes = kPixelBytes);
    ~Icons();
    Icons(const Icons&) = delete;
    Icons& operator=(const Icons&) = delete;

    /// Uses the icon theme that the desktop wants, and follows a change of it.
    void follow(const Published<DesktopLooks>&);
    /// Emitted when any icon may have changed.
    Signal<> themeDidChange;

    /// The icon that the desktop file names; empty when it names none or none is found.
    Image forEntry(std::string_view desktopFilePath);
    /// The same icon, waited for, in a square of this many pixels and not kept here; absent when it
    /// cannot be drawn. From any thread.
    std::optional<IconPicture> render(std::string_view desktopFilePath, int pixels);
    /// The icon that a window provides; empty when no size of it is usable. Pixels that were
    /// dropped are read again when they are drawn.
    Image fromPixels(
        const std::vector<IconPixels>&, std::function<std::vector<IconPixels>()> reload = {});
    /// The theme's picture of a program, else ours; never empty.
    Image generic();

private:
    Image named(const std::string& nameOrPath);
    Image makeNamed(const std::string& nameOrPath);
    std::vector<IconCandidate> filesOf(const std::string& nameOrPath);
    void forget();
    void setTheme(const std::string& name);

    DesktopEntries& m_entries;
    IconPictures& m_pictures;
    const std::shared_ptr<PixelBudget> m_budget;
    std::mutex m_themeLock; ///< guards the two below
    std::unique_ptr<IconTheme> m_theme;
    std::string m_themeName; ///< empty: the user's own configuration decides
    std::map<std::string, std::weak_ptr<const PlatformImage>> m_images; ///< by name or path
    Image m_generic;
    Subscription m_entriesChanged;
    Subscription m_looksChanged;
};

}
