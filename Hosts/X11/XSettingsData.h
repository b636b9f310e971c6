#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "Hosts/Linux/DesktopLooks.h"

namespace quorvel::xdg::x11 {

/// Decodes the property `_XSETTINGS_SETTINGS`, in either byte order. Absent when it is malformed
/// anywhere; a value of the wrong type or without sense is left out.
std::optional<DesktopLooks> decodeXSettings(std::span<const std::byte>);

}
