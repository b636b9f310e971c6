#include "Quorvel/Core/StoredJson.h"

namespace quorvel {

nlohmann::json parseStoredJson(std::string_view bytes, int deepest)
{
    using Json = nlohmann::json;
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

std::string storedText(const nlohmann::json& json, int indent)
{
    return json.dump(indent, ' ', false, nlohmann::json::error_handler_t::replace);
}

}
