#pragma once

#include <optional>
#include <string>

#include "Tests/MacSystem/Support/Objects.h"

namespace quorvel::test {

/// What a string holds.
using Units = std::u16string;

Object textObject(Units);
/// An unpaired surrogate becomes the loss byte.
std::string encode(std::u16string_view, char lossByte);
/// Absent for bytes that are no UTF-8.
std::optional<Units> decode(std::string_view bytes);

}
