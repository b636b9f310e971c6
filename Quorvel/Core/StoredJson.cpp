#include "Quorvel/Core/StoredJson.h"

namespace quorvel {

namespace {

using Json = nlohmann::json;

}

Json parseStoredJson(std::string_view bytes, int deepest)
{
    bool isTooDeep = false;
    auto json = Json::parse(
        bytes,
        [&](int depth, Json::parse_event_t, Json&) {
            isTooDeep = isTooDeep || depth > deepest;
            return !isTooDeep;
        },
        false);
    return isTooDeep ? Json(Json::value_t::discarded) : json;
}

std::string storedText(const Json& json, int indent)
{
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

}
