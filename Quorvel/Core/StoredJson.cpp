#include "Quorvel/Core/StoredJson.h"

namespace quorvel {

namespace {

using Json = nlohmann::json;

/// Whether lists and objects are nested deeper, in JSON or what looks like it.
bool isDeeper(std::string_view bytes, int deepest)
{
    int depth = 0;
    bool isText = false;
    for (std::size_t i = 0; i < bytes.size() && depth <= deepest; ++i) {
        char letter = bytes[i];
        if (isText && letter == '\\')
            ++i; // whatever comes next is part of the text
        else if (letter == '"')
            isText = !isText;
        else if (!isText && (letter == '[' || letter == '{'))
            ++depth;
        else if (!isText && (letter == ']' || letter == '}'))
            --depth;
    }
    return depth > deepest;
}

}

Json parseStoredJson(std::string_view bytes, int deepest)
{
    // The parser could tell of each level itself, but then takes a time that grows with the square
    // of the size of a list.
    if (isDeeper(bytes, deepest))
        return Json(Json::value_t::discarded);
    return Json::parse(bytes, nullptr, false);
}

std::string storedText(const Json& json, int indent)
{
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

}
