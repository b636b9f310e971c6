#pragma once

namespace quorvel::xdg {

/// Texts are found in the installed catalogues of the user's language, from now on. After the
/// locale has been set, before anything is shown.
void useGettext();

}
