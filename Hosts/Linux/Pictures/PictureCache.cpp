#include "Hosts/Linux/Pictures/PictureCache.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <glib/gstdio.h>
#include <sys/stat.h>

#include "Hosts/Linux/FileReading.h"
#include "Hosts/Linux/GHandles.h"

namespace quorvel::xdg {
namespace {

namespace fs = std::filesystem;

/// What stands before the pixels; another order of bytes or another version makes it unreadable.
struct KeptHead {
    std::uint32_t mark = 0x31565151;
    std::uint32_t pixels = 0; ///< 0: no picture
};

constexpr int kPrivateFolder = 0700;
constexpr std::size_t kLargestKept = sizeof(KeptHead) + (std::size_t{1024} * 1024 * 4);

}

std::optional<PictureCache::Source> PictureCache::Source::of(const std::string& path)
{
    struct stat status;
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return Source{
        path, status.st_mtim.tv_sec * 1'000'000'000 + status.st_mtim.tv_nsec, status.st_size};
}

PictureCache::PictureCache(std::string folder, std::size_t limit)
    : m_folder(std::move(folder))
    , m_limit(limit)
{
}

std::string PictureCache::fileFor(const Source& source, int pixels) const
{
    const auto key = fmt::format("{} {} {} {}", source.modified, source.size, pixels, source.path);
    const GText name{g_compute_checksum_for_data(
        G_CHECKSUM_SHA256, reinterpret_cast<const guchar*>(key.data()), key.size())};
    return m_folder + '/' + name.get();
}

std::optional<SurfacePointer> PictureCache::find(const Source& source, int pixels) const
{
    const auto bytes = readFile(fileFor(source, pixels), kLargestKept);
    KeptHead head;
    if (!bytes || bytes->size() < sizeof head)
        return std::nullopt;
    std::memcpy(&head, bytes->data(), sizeof head);
    if (head.mark != KeptHead{}.mark)
        return std::nullopt;
    if (head.pixels == 0)
        return SurfacePointer{};
    auto square = makeSquare(pixels);
    if (!square || head.pixels != static_cast<std::uint32_t>(pixels)
        || bytes->size() != sizeof head + bytesOf(square))
        return std::nullopt;
    std::memcpy(
        cairo_image_surface_get_data(square.get()), bytes->data() + sizeof head, bytesOf(square));
    cairo_surface_mark_dirty(square.get());
    return square;
}

void PictureCache::keep(const Source& source, int pixels, const SurfacePointer& square)
{
    if (g_mkdir_with_parents(m_folder.c_str(), kPrivateFolder) != 0)
        return;
    KeptHead head;
    head.pixels = square ? static_cast<std::uint32_t>(pixels) : 0;
    std::string bytes(sizeof head + bytesOf(square), '\0');
    std::memcpy(bytes.data(), &head, sizeof head);
    if (square)
        std::memcpy(bytes.data() + sizeof head, cairo_image_surface_get_data(square.get()),
            bytesOf(square));
    // Whole or not at all, but it may be lost with the machine's power.
    g_file_set_contents_full(fileFor(source, pixels).c_str(), bytes.data(),
        static_cast<gssize>(bytes.size()), G_FILE_SET_CONTENTS_CONSISTENT, 0600, nullptr);
    if (m_kept++ % kFilesBetweenLooks == 0)
        makeRoom();
}

void PictureCache::makeRoom() const
{
    struct Kept {
        fs::file_time_type written;
        std::size_t bytes;
        fs::path path;
    };
    std::vector<Kept> all;
    std::size_t total = 0;
    std::error_code problem;
    for (fs::directory_iterator at{m_folder, problem}, end; !problem && at != end;
        at.increment(problem)) {
        std::error_code vanished;
        const auto bytes = static_cast<std::size_t>(at->file_size(vanished));
        if (vanished)
            continue;
        total += bytes;
        all.push_back({at->last_write_time(vanished), bytes, at->path()});
    }
    if (total <= m_limit)
        return;
    std::sort(all.begin(), all.end(), [](auto& a, auto& b) { return a.written < b.written; });
    for (const auto& kept : all) {
        if (total <= m_limit / 2)
            return;
        std::error_code vanished;
        fs::remove(kept.path, vanished);
        total -= kept.bytes;
    }
}

}
