#include "Hosts/Linux/Pictures/PictureDecoding.h"

#include <cerrno>
#include <string>
#include <vector>

#include <fontconfig/fontconfig.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Hosts/Linux/Pictures/DecoderMessages.h"
#include "Hosts/Linux/Pictures/PictureDrawing.h"
#include "Hosts/Linux/Pictures/Seclusion.h"

namespace quorvel::xdg {
namespace {

/// Enough for the largest picture in every form that it takes on its way.
constexpr std::size_t kMemory = 256 << 20;
constexpr unsigned kSecondsOfWork = 60;

bool receive(void* into, std::size_t size)
{
    auto* at = static_cast<char*>(into);
    while (size > 0) {
        const auto got = ::recv(STDIN_FILENO, at, size, 0);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        at += got;
        size -= static_cast<std::size_t>(got);
    }
    return true;
}

bool send(const void* from, std::size_t size)
{
    auto* at = static_cast<const char*>(from);
    while (size > 0) {
        const auto sent = ::send(STDIN_FILENO, at, size, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent <= 0)
            return false;
        at += sent;
        size -= static_cast<std::size_t>(sent);
    }
    return true;
}

bool answer(const SurfacePointer& square)
{
    const DecoderAnswer head{square ? 1U : 0U};
    if (!send(&head, sizeof head))
        return false;
    if (!square)
        return true;
    // Rows of 32-bit pixels lie without gaps.
    cairo_surface_flush(square.get());
    return send(cairo_image_surface_get_data(square.get()), bytesOf(square));
}

bool serveOne()
{
    DecoderRequest request;
    if (!receive(&request, sizeof request) || request.length > kLargestPictureFile
        || request.pixels < 1 || request.pixels > kLargestDecodedSide)
        return false;
    std::string bytes(request.length, '\0');
    return receive(bytes.data(), bytes.size())
        && answer(drawPicture(bytes, request.format, static_cast<int>(request.pixels)));
}

/// Has what the first drawing of all loads and sets up in the process before it is secluded. It has
/// no text: that starts threads, which would not be bound.
void loadLibraries()
{
    drawPicture("<svg xmlns='http://www.w3.org/2000/svg'><rect width='1' height='1'/></svg>",
        PictureFormat::svg, 1);
}

/// Some drawings have text. Finds out which fonts there are, once for all.
std::vector<std::string> fontFolders()
{
    std::vector<std::string> folders;
    FcInit();
    FcConfig* fonts = FcConfigGetCurrent();
    FcConfigSetRescanInterval(fonts, 0);
    FcStrList* list = FcConfigGetFontDirs(fonts);
    while (const FcChar8* folder = list ? FcStrListNext(list) : nullptr)
        folders.emplace_back(reinterpret_cast<const char*>(folder));
    if (list)
        FcStrListDone(list);
    return folders;
}

}

int decodePictures()
{
    loadLibraries();
    if (!secludeProcess({kMemory, kSecondsOfWork, fontFolders()}))
        return 1;
    while (serveOne()) { }
    return 0;
}

}
