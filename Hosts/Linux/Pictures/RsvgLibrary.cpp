#include "Hosts/Linux/Pictures/RsvgLibrary.h"

#include <optional>

#include "Hosts/Linux/LibrarySymbols.h"

namespace quorvel::xdg {

namespace {

std::optional<RsvgLibrary> loadLibrary()
{
    LibrarySymbols symbols{"librsvg-2.so.2"};
    RsvgLibrary rsvg{};
    symbols.find("rsvg_handle_new_from_data", rsvg.newFromData);
    symbols.find("rsvg_handle_render_document", rsvg.render);
    return symbols.areComplete() ? std::optional{rsvg} : std::nullopt;
}

}

const RsvgLibrary* RsvgLibrary::load()
{
    static const auto library = loadLibrary();
    return library ? &*library : nullptr;
}

}
