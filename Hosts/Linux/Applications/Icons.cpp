#include "Hosts/Linux/Applications/Icons.h"

#include <algorithm>
#include <utility>

#include "Hosts/Linux/Applications/DesktopEntries.h"
#include "Hosts/Linux/Applications/DrawnIcon.h"
#include "Hosts/Linux/Applications/IconFile.h"
#include "Hosts/Linux/Applications/IconPictures.h"
#include "Hosts/Linux/Applications/IconTheme.h"
#include "Hosts/Linux/Applications/PixelIcon.h"
#include "Hosts/Linux/Drawing/PixelPicture.h"

namespace quorvel::xdg {
namespace {

constexpr const char* kGenericName = "application-x-executable";

IconPictures::Files filesForSize(const std::vector<IconCandidate>& candidates, int pixels)
{
    IconPictures::Files files;
    for (auto& candidate : sortedForSize(candidates, pixels))
        files.push_back(std::move(candidate.path));
    return files;
}

/// Files of one picture in several sizes.
class FileIcon final : public RenderedIcon {
public:
    FileIcon(std::vector<IconCandidate> candidates, IconPictures& pictures,
        std::shared_ptr<PixelBudget> budget)
        : RenderedIcon(std::move(budget))
        , m_candidates(std::move(candidates))
        , m_pictures(pictures)
    {
    }

protected:
    std::optional<SurfacePointer> draw(int pixels) const override
    {
        return m_pictures.find(filesForSize(m_candidates, pixels), pixels);
    }

private:
    const std::vector<IconCandidate> m_candidates;
    IconPictures& m_pictures;
};

}

Icons::Icons(DesktopEntries& entries, IconPictures& pictures, std::size_t pixelBytes)
    : m_entries(entries)
    , m_pictures(pictures)
    , m_budget(std::make_shared<PixelBudget>(pixelBytes))
    , m_entriesChanged(entries.changed.subscribe([this] { forget(); }))
{
}

Icons::~Icons() = default;

void Icons::follow(const Published<DesktopLooks>& looks)
{
    {
        std::lock_guard lock{m_themeLock};
        m_themeName = looks.value().iconTheme;
    }
    m_looksChanged = looks.subscribe([this](auto& now) { setTheme(now.iconTheme); });
}

void Icons::setTheme(const std::string& name)
{
    {
        std::lock_guard lock{m_themeLock};
        if (std::exchange(m_themeName, name) == name)
            return;
    }
    forget();
    themeDidChange.emit();
}

Image Icons::forEntry(std::string_view desktopFilePath)
{
    const auto icon = m_entries.icon(desktopFilePath);
    return icon ? named(*icon) : Image{};
}

std::optional<IconPicture> Icons::render(std::string_view desktopFilePath, int pixels)
{
    const auto icon = m_entries.icon(desktopFilePath);
    if (!icon || pixels < 1 || pixels > RenderedIcon::kLargestSize)
        return std::nullopt;
    auto surface = m_pictures.draw(filesForSize(filesOf(*icon), pixels), pixels);
    if (!surface)
        return std::nullopt;
    const auto bytes = bytesOf(surface);
    return IconPicture{std::make_shared<PixelPicture>(surface.release()), bytes};
}

Image Icons::fromPixels(
    const std::vector<IconPixels>& sizes, std::function<std::vector<IconPixels>()> reload)
{
    return PixelIcon::from(sizes, std::move(reload), m_budget);
}

Image Icons::generic()
{
    if (!m_generic)
        m_generic = named(kGenericName);
    if (!m_generic)
        m_generic = std::make_shared<DrawnIcon>(m_budget);
    return m_generic;
}

Image Icons::named(const std::string& nameOrPath)
{
    auto& known = m_images[nameOrPath];
    if (auto image = known.lock())
        return image;
    auto image = makeNamed(nameOrPath);
    if (image)
        known = image;
    else
        m_images.erase(nameOrPath);
    return image;
}

Image Icons::makeNamed(const std::string& nameOrPath)
{
    auto files = filesOf(nameOrPath);
    return files.empty() ? Image{}
                         : std::make_shared<FileIcon>(std::move(files), m_pictures, m_budget);
}

/// From any thread.
std::vector<IconCandidate> Icons::filesOf(const std::string& nameOrPath)
{
    if (nameOrPath.starts_with('/'))
        return isIconFile(nameOrPath) ? std::vector{IconCandidate{nameOrPath}}
                                      : std::vector<IconCandidate>{};
    std::lock_guard lock{m_themeLock};
    if (!m_theme)
        m_theme = std::make_unique<IconTheme>(m_themeName);
    return m_theme->find(nameOrPath);
}

/// New applications bring their icons: what was missing may be there now.
void Icons::forget()
{
    {
        std::lock_guard lock{m_themeLock};
        m_theme.reset();
    }
    m_images.clear();
    m_generic.reset();
}

}
