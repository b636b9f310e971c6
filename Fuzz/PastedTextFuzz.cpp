// Any bytes that another program calls a text, pasted into a field.
#include <string>

#include <glib.h>

#include "Quorvel/Views/Kit/PlainLine.h"
#include "Tests/Support/Fuzz/Expect.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes{reinterpret_cast<const char*>(data), size};
    const auto line = quorvel::plainLine(bytes);
    expect(g_utf8_validate(line.data(), static_cast<gssize>(line.size()), nullptr));
    expect(line.size() <= size * 3);
    for (const auto* at = line.data(); at < line.data() + line.size(); at = g_utf8_next_char(at))
        expect(!g_unichar_iscntrl(g_utf8_get_char(at)));
    expect(quorvel::plainLine(line) == line);
    // What was such a line already is taken as it is.
    if (g_utf8_validate(bytes.data(), static_cast<gssize>(size), nullptr))
        expect(line.find("\xEF\xBF\xBD") == std::string::npos
            || bytes.find("\xEF\xBF\xBD") != std::string_view::npos);
    return 0;
}
