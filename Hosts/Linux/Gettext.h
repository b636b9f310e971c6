#pragma once

#include <filesystem>
#include <string>

namespace quorvel::xdg {

/// Where this program's catalogues are: in `share/locale` beside it if it runs from the folder that
/// it was built in, else where it was installed.
std::filesystem::path localeFolder();

/// Texts are found in the catalogues of the user's language in that folder, from now on. After the
/// locale has been set, before anything is shown. In the locale "C", and in a language without a
/// catalogue, they are English. One that is broken is reported on standard error, and all is
/// English.
void useGettext(const std::filesystem::path& folder = localeFolder());

/// The language that the user wants texts in, as a locale is called ("de_AT", "ar_EG.UTF-8"): the
/// first of LANGUAGE, else that of LC_MESSAGES. "C" if neither was set.
std::string languageOfTexts();

}
