#include "Hosts/Posix/ControlMessage.h"

#include <algorithm>

#include <nlohmann/json.hpp>

namespace quorvel::posix {

namespace {

using Json = nlohmann::json;

/// Breaks within texts are escaped, so the line ends with the message.
std::string line(const Json& json)
{
    return json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

Json parse(std::string_view message)
{
    return Json::parse(message, nullptr, /*allow_exceptions=*/false);
}

const std::string* textIn(const Json& object, const char* key)
{
    auto found = object.find(key);
    return found == object.end() ? nullptr : found->get_ptr<const std::string*>();
}

}

std::string encodeRequest(const std::vector<std::string>& arguments)
{
    return line(arguments);
}

std::optional<std::vector<std::string>> decodeRequest(std::string_view message)
{
    auto json = parse(message);
    if (!json.is_array() || !std::ranges::all_of(json, [](auto& item) { return item.is_string(); }))
        return std::nullopt;
    return json.get<std::vector<std::string>>();
}

std::string encodeReply(const ControlReply& reply)
{
    return line({{"status", reply.exitStatus}, {"output", reply.output}, {"error", reply.error}});
}

std::optional<ControlReply> decodeReply(std::string_view message)
{
    auto json = parse(message);
    auto status = json.find("status");
    auto* output = textIn(json, "output");
    auto* error = textIn(json, "error");
    if (!output || !error || status == json.end() || !status->is_number_integer())
        return std::nullopt;
    return ControlReply{status->get<int>(), *output, *error};
}

std::optional<std::string> LineReader::next()
{
    auto end = m_bytes.find('\n');
    if (end == std::string::npos || end > m_longest)
        return std::nullopt;
    auto line = m_bytes.substr(0, end);
    m_bytes.erase(0, end + 1);
    return line;
}

MessageReader::State MessageReader::add(std::string_view bytes)
{
    auto end = bytes.find('\n');
    bool isWhole = end != std::string_view::npos;
    m_bytes.append(bytes.substr(0, end));
    if (m_bytes.size() > m_longest || (isWhole && end + 1 < bytes.size()))
        return State::malformed;
    return isWhole ? State::complete : State::incomplete;
}

}
