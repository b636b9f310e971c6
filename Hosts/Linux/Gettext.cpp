#include "Hosts/Linux/Gettext.h"

#include <libintl.h>

#include "Quorvel/Platform/Translation.h"

namespace quorvel::xdg {

namespace {

constexpr char kCatalogue[] = "quorvel";

}

void useGettext()
{
    bindtextdomain(kCatalogue, QUORVEL_LOCALE_FOLDER);
    bind_textdomain_codeset(kCatalogue, "UTF-8");
    Translator::current() = {// The empty text would be answered with the catalogue's own header.
        [](const char* english) -> std::string {
            return *english ? dgettext(kCatalogue, english) : english;
        },
        [](const char* one, const char* many, std::size_t count) -> std::string {
            return dngettext(kCatalogue, one, many, count);
        }};
}

}
