#pragma once

#include <string_view>

namespace quorvel::test {

/// Fails the running test: the program used the platform in a way that no real system forgives.
void contractBroken(std::string_view what);

}
