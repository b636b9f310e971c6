#include <algorithm>
#include <span>
#include <vector>

#include <glib.h>

#include "Hosts/X11/Desktop/Properties.h"
#include "Tests/Support/Fuzz/Expect.h"

namespace {

using namespace quorvel::xdg;
using namespace quorvel::xdg::x11;

/// A converter is a library that is loaded at its first use and dropped soon after: that would be
/// most of the fuzzer's work.
[[maybe_unused]] const auto* const kConverters = [] {
    auto* kept = new std::vector<GIConv>; // for as long as the fuzzer runs
    for (auto* encoding : {"ISO-8859-1", "ISO-8859-2", "ISO-8859-3", "ISO-8859-4", "ISO-8859-5",
             "ISO-8859-6", "ISO-8859-7", "ISO-8859-8", "ISO-8859-9", "ISO-8859-15", "SHIFT_JIS",
             "EUC-CN", "EUC-JP", "EUC-KR"})
        kept->push_back(g_iconv_open("UTF-8", encoding));
    return kept;
}();

constexpr TextTypes kTypes{.utf8String = 300, .compoundText = 301};

void expectClean(const std::string& text)
{
    expect(text.size() <= limits::titleBytes);
    expect(g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr));
}

void readTexts(const RawProperty& property)
{
    if (auto text = decodeText(property, kTypes))
        expectClean(*text);
    for (auto& text : decodeTexts(property, kTypes, limits::desktops))
        expectClean(text);
    if (auto names = decodeClass(property, kTypes)) {
        expectClean(names->instance);
        expectClean(names->name);
    }
}

void readWords(const RawProperty& property)
{
    decodeCardinal(property);
    decodeWindow(property);
    decodeAtoms(property);
    decodeHints(property);
    decodeExtents(property);
    decodeStrut(property);
    expect(decodeNotedOpacities(property).size() * 3 <= property.words());
    auto opacity = decodeOpacity(property);
    expect(opacity >= 0 && opacity <= 1);
    for (auto window : decodeWindows(property))
        expect(window != XCB_WINDOW_NONE);
    for (auto& icon : decodeIcons(property)) {
        auto pixels = static_cast<std::size_t>(icon.width) * static_cast<std::size_t>(icon.height);
        expect(pixels == icon.argb.size() && pixels > 0);
        expect(std::max(icon.width, icon.height) <= static_cast<int>(limits::largeIconSide));
    }
}

}

// The first byte chooses the type, the second the format; the rest is the value.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr xcb_atom_t types[]{kTypes.utf8String, kTypes.compoundText, XCB_ATOM_STRING,
        XCB_ATOM_CARDINAL, XCB_ATOM_ATOM, XCB_ATOM_WINDOW, XCB_ATOM_WM_HINTS, 1000};
    constexpr std::uint8_t formats[]{8, 16, 32, 0};
    if (size < 2)
        return 0;
    RawProperty property{types[data[0] % std::size(types)], formats[data[1] % std::size(formats)],
        std::as_bytes(std::span{data + 2, size - 2})};
    readTexts(property);
    readWords(property);
    return 0;
}
