#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace quorvel {

/// From a file that anybody may have written: discarded if the bytes are no JSON, or nested deeper
/// than `deepest`.
nlohmann::json parseStoredJson(std::string_view, int deepest);

/// For a file. Texts come from other programs and may hold anything; one that is no UTF-8 must not
/// keep the rest from being stored. An indent of -1 writes one line.
std::string storedText(const nlohmann::json&, int indent);

}
