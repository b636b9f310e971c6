#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Hosts/Linux/Pictures/DecoderProcess.h"
#include "Hosts/Linux/Pictures/PictureCache.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg {

/// Icons out of files at the sizes in which they are shown: from the user's cache folder, or else
/// decoded in a process of their own. The main thread never waits for that.
class IconPictures {
public:
    /// Files of one picture, the best for a size first; the others are for when it is broken.
    using Files = std::vector<std::string>;

    /// The command line of the process that decodes.
    IconPictures(Dispatch&, std::vector<std::string> command);
    ~IconPictures();
    IconPictures(const IconPictures&) = delete;
    IconPictures& operator=(const IconPictures&) = delete;

    /// A square, or null where no file can be drawn; absent while that is not known: then it is
    /// being decoded, and `arrived` is emitted when the answer is there. Main thread.
    std::optional<SurfacePointer> find(const Files&, int pixels);
    /// Emitted once for all pictures that came together. Main thread.
    Signal<> arrived;

    /// Waits for the picture; null where no file can be drawn. From any thread.
    SurfacePointer draw(const Files&, int pixels);

private:
    using Request = std::pair<Files, int>;

    void didDraw(const Request&, SurfacePointer);

    /// Enough for all that is in sight; what nobody fetches is not kept for ever.
    static constexpr std::size_t kWaitingPictures = 512;

    Queue& m_main;
    PictureCache m_cache;
    std::set<Request> m_requested;
    std::map<Request, SurfacePointer> m_waiting; ///< until they are asked for again
    WorkItem m_news;
    std::unique_ptr<Queue> m_queue;
    DecoderProcess m_decoder;
    std::shared_ptr<bool> m_isAlive = std::make_shared<bool>(true); ///< main thread
};

}
