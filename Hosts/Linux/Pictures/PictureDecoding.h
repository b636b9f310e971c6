#pragma once

namespace quorvel::xdg {

/// The hidden argument that has the bar's own program decode pictures.
constexpr char kDecodePictures[] = "--decode-pictures";

/// What such a process does: secluded from the system, it answers what comes over the socket on its
/// standard input until that is closed. Returns the exit status.
int decodePictures();

}
