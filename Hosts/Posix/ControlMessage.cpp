#include "Hosts/Posix/ControlMessage.h"

#include <cstring>

namespace quorvel::posix {

namespace {

using Length = std::uint32_t;

template <typename Number> void append(std::string& bytes, Number number)
{
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

template <typename Number> std::optional<Number> take(std::string_view& bytes)
{
    Number number{};
    if (bytes.size() < sizeof number)
        return std::nullopt;
    std::memcpy(&number, bytes.data(), sizeof number);
    bytes.remove_prefix(sizeof number);
    return number;
}

std::string framed(std::string_view message)
{
    std::string bytes;
    append(bytes, static_cast<Length>(message.size()));
    return bytes.append(message);
}

}

std::string encodeRequest(const std::vector<std::string>& arguments)
{
    std::string message;
    for (auto& argument : arguments)
        message.append(argument.c_str()).push_back('\0');
    return framed(message);
}

std::optional<std::vector<std::string>> decodeRequest(std::string_view message)
{
    std::vector<std::string> arguments;
    while (!message.empty()) {
        auto end = message.find('\0');
        if (end == std::string_view::npos)
            return std::nullopt;
        arguments.emplace_back(message.substr(0, end));
        message.remove_prefix(end + 1);
    }
    return arguments;
}

std::string encodeReply(const ControlReply& reply)
{
    std::string message;
    append(message, static_cast<std::int32_t>(reply.exitStatus));
    append(message, static_cast<Length>(reply.output.size()));
    return framed(message.append(reply.output).append(reply.error));
}

std::optional<ControlReply> decodeReply(std::string_view message)
{
    auto status = take<std::int32_t>(message);
    auto outputLength = take<Length>(message);
    if (!status || !outputLength || *outputLength > message.size())
        return std::nullopt;
    return ControlReply{*status, std::string{message.substr(0, *outputLength)},
        std::string{message.substr(*outputLength)}};
}

MessageReader::State MessageReader::add(std::string_view bytes)
{
    m_bytes.append(bytes);
    std::string_view rest = m_bytes;
    auto length = take<Length>(rest);
    if (!length)
        return State::incomplete;
    if (*length > m_longest || rest.size() > *length)
        return State::malformed;
    return rest.size() == *length ? State::complete : State::incomplete;
}

std::string_view MessageReader::message() const
{
    return std::string_view{m_bytes}.substr(sizeof(Length));
}

}
