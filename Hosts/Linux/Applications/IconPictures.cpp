#include "Hosts/Linux/Applications/IconPictures.h"

#include "Hosts/Linux/Applications/XdgFolders.h"
#include "Hosts/Linux/FileReading.h"

namespace quorvel::xdg {
namespace {

/// Pictures that come within this time are shown together.
constexpr Duration kTogether = seconds(0.02);

}

IconPictures::IconPictures(Dispatch& dispatch, std::vector<std::string> command)
    : m_main(dispatch.main())
    , m_cache(cacheFolder() + "/Quorvel/icons")
    , m_queue(dispatch.makeSerialQueue("icons", QualityOfService::userInitiated))
    , m_decoder(std::move(command), *m_queue)
{
}

/// Its queue first, which may be at work with the rest.
IconPictures::~IconPictures()
{
    m_queue.reset();
}

std::optional<SurfacePointer> IconPictures::find(const Files& files, int pixels)
{
    Request request{files, pixels};
    if (const auto waiting = m_waiting.extract(request))
        return std::move(waiting.mapped());
    for (const auto& file : files) {
        const auto source = PictureCache::Source::of(file);
        if (!source)
            continue;
        auto known = m_cache.find(*source, pixels);
        if (known && *known)
            return known;
        if (known)
            continue;
        if (m_requested.insert(request).second) {
            m_queue->async([this, request, isAlive = std::weak_ptr{m_isAlive}] {
                auto square = std::make_shared<SurfacePointer>(draw(request.first, request.second));
                m_main.async([this, request, square, isAlive] {
                    if (!isAlive.expired())
                        didDraw(request, std::move(*square));
                });
            });
        }
        return std::nullopt;
    }
    return SurfacePointer{};
}

void IconPictures::didDraw(const Request& request, SurfacePointer square)
{
    m_requested.erase(request);
    if (m_waiting.size() >= kWaitingPictures)
        m_waiting.clear();
    m_waiting.insert_or_assign(request, std::move(square));
    if (!m_news.isPending())
        m_news = m_main.after(kTogether, [this] { arrived.emit(); });
}

SurfacePointer IconPictures::draw(const Files& files, int pixels)
{
    for (const auto& file : files) {
        const auto source = PictureCache::Source::of(file);
        if (!source)
            continue;
        auto known = m_cache.find(*source, pixels);
        if (!known) {
            const auto bytes = readFile(file, kLargestPictureFile);
            const auto format = bytes ? formatOf(file, *bytes) : std::nullopt;
            if (!format)
                continue;
            auto decoded = m_decoder.decode(*bytes, *format, pixels);
            if (decoded.isFinal)
                m_cache.keep(*source, pixels, decoded.square);
            known = std::move(decoded.square);
        }
        if (*known)
            return std::move(*known);
    }
    return nullptr;
}

}
