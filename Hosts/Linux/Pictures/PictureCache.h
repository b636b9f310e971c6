#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "Hosts/Linux/Pictures/PictureSurface.h"

namespace quorvel::xdg {

/// Pictures as they were drawn, kept over restarts in a folder: one small file each, named after
/// the path, time and size of the picture's own file and the side in pixels, so that a change of
/// the file makes it draw anew. Where the folder cannot be written, nothing is kept. From any
/// thread.
class PictureCache {
public:
    static constexpr std::size_t kLimit = 16 << 20; ///< bytes of all files together, about
    static constexpr unsigned kFilesBetweenLooks = 32; ///< at how many they are

    /// The state of a picture's file when it was drawn.
    struct Source {
        std::string path;
        std::int64_t modified; ///< nanoseconds
        std::int64_t size; ///< bytes

        /// Absent for anything but a regular file.
        static std::optional<Source> of(const std::string& path);
    };

    explicit PictureCache(std::string folder, std::size_t limit = kLimit);

    /// Absent where it is not kept; null where it is known to be no picture.
    std::optional<SurfacePointer> find(const Source&, int pixels) const;
    /// Null: it is no picture. Drops the oldest files when they have become too many.
    void keep(const Source&, int pixels, const SurfacePointer& square);

private:
    std::string fileFor(const Source&, int pixels) const;
    void makeRoom() const;

    const std::string m_folder;
    const std::size_t m_limit;
    std::atomic<unsigned> m_kept = 0; ///< since it was made
};

}
