#pragma once

namespace quorvel::test {

/// Whether the program is built with sanitizers: it takes several times as long then, and has a
/// thread more than it would have.
inline constexpr bool kIsSanitized = QUORVEL_IS_SANITIZED;

}
