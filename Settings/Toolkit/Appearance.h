#pragma once

namespace quorvel::settings {

/// Starts the toolkit with the desktop's looks: where no portal says whether it is dark, the name
/// of its theme does, as it does for the bar. To be called first of all. False without a display.
bool startToolkit();

}
