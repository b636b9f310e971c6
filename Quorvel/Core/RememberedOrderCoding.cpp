#include "Quorvel/Core/RememberedOrderCoding.h"

#include <algorithm>
#include <limits>
#include <utility>

#include <nlohmann/json.hpp>

#include "Quorvel/Core/StoredJson.h"

namespace quorvel {

namespace {

using Json = nlohmann::json;

constexpr int kFormat = 1;
constexpr int kOneLine = -1;
constexpr int kNestingOfOrders = 12;

// MARK: Reading members. Those of the first kind may be left out; false for another type.

const Json* memberOf(const Json& object, const char* name)
{
    auto found = object.find(name);
    return found == object.end() ? nullptr : &*found;
}

bool readMember(const Json& object, const char* name, std::string& into)
{
    auto* found = memberOf(object, name);
    if (found && found->is_string())
        into = rememberedText(found->get_ref<const std::string&>());
    return !found || found->is_string();
}

bool readMember(const Json& object, const char* name, bool& into)
{
    auto* found = memberOf(object, name);
    if (found && found->is_boolean())
        into = found->get<bool>();
    return !found || found->is_boolean();
}

template <typename Number> std::optional<Number> numberFrom(const Json& json)
{
    if (!json.is_number_unsigned() || !std::in_range<Number>(json.get<std::uint64_t>()))
        return std::nullopt;
    return json.get<Number>();
}

template <typename Element, typename Read>
bool readElements(const Json& object, const char* name, std::size_t limit,
    std::vector<Element>& into, const Read& readElement)
{
    auto* found = memberOf(object, name);
    if (!found || !found->is_array())
        return false;
    for (auto& json : *found) {
        if (into.size() == limit)
            return true;
        Element element{};
        if (!readElement(json, element))
            return false;
        into.push_back(std::move(element));
    }
    return true;
}

bool readWindow(const Json& json, RememberedWindow& window)
{
    if (!json.is_object())
        return false;
    if (auto* number = memberOf(json, "number")) {
        window.number = numberFrom<std::uint32_t>(*number);
        if (!window.number)
            return false;
    }
    return readMember(json, "app", window.application) && readMember(json, "role", window.role)
        && readMember(json, "title", window.title) && readMember(json, "front", window.isFront);
}

bool readItem(const Json& json, RememberedItem& item)
{
    if (json.is_string()) {
        item = rememberedText(json.get_ref<const std::string&>());
        return true;
    }
    auto index = numberFrom<std::uint32_t>(json);
    item = std::size_t{index.value_or(0)};
    return index.has_value();
}

bool readSpace(const Json& json, RememberedSpace& space)
{
    if (!json.is_object())
        return false;
    auto& identity = space.identity;
    auto* index = memberOf(json, "index");
    auto number = index ? numberFrom<int>(*index) : std::nullopt;
    identity.index = number.value_or(0);
    bool isSound = number.has_value() && readMember(json, "display", identity.display)
        && readMember(json, "uuid", identity.uuid) && readMember(json, "name", identity.name)
        && readElements(json, "windows", OrderLimits::windows, space.windows, readWindow)
        && readElements(json, "order", 2 * OrderLimits::windows, space.order, readItem);
    std::erase_if(space.order, [&](const RememberedItem& item) {
        auto* place = std::get_if<std::size_t>(&item);
        return place && *place >= space.windows.size();
    });
    return isSound;
}

bool readOrder(const Json& json, RememberedOrder& order)
{
    return json.is_object() && readMember(json, "session", order.session)
        && readElements(json, "spaces", OrderLimits::spaces, order.spaces, readSpace);
}

// MARK: Writing members; what is empty is left out

void putText(Json& object, const char* name, const std::string& text)
{
    if (auto kept = rememberedText(text); !kept.empty())
        object[name] = std::move(kept);
}

template <typename Element, typename Write>
Json listOf(const std::vector<Element>& elements, std::size_t limit, const Write& writeElement)
{
    auto list = Json::array();
    for (auto& element : elements) {
        if (list.size() == limit)
            break;
        list.push_back(writeElement(element));
    }
    return list;
}

Json windowJson(const RememberedWindow& window)
{
    auto json = Json::object();
    if (window.number)
        json["number"] = *window.number;
    putText(json, "app", window.application);
    putText(json, "role", window.role);
    putText(json, "title", window.title);
    if (window.isFront)
        json["front"] = true;
    return json;
}

Json itemJson(const RememberedItem& item)
{
    if (auto* key = std::get_if<std::string>(&item))
        return rememberedText(*key);
    return std::get<std::size_t>(item);
}

Json spaceJson(const RememberedSpace& space)
{
    Json json{{"index", std::max(0, space.identity.index)},
        {"windows", listOf(space.windows, OrderLimits::windows, windowJson)},
        {"order", listOf(space.order, 2 * OrderLimits::windows, itemJson)}};
    putText(json, "display", space.identity.display);
    putText(json, "uuid", space.identity.uuid);
    putText(json, "name", space.identity.name);
    return json;
}

Json orderJson(const RememberedOrder& order)
{
    Json json{{"spaces", listOf(order.spaces, OrderLimits::spaces, spaceJson)}};
    putText(json, "session", order.session);
    return json;
}

/// False if there is nothing left to take away.
bool shorten(std::vector<RememberedOrder>& orders)
{
    if (orders.size() > 1) {
        orders.pop_back();
        return true;
    }
    if (orders.empty() || orders.front().spaces.empty())
        return false;
    bool isShorter = false;
    for (auto& space : orders.front().spaces) {
        isShorter |= !space.windows.empty();
        space.windows.resize(space.windows.size() / 2);
        space.order.resize(std::min(space.order.size(), space.windows.size()));
    }
    return isShorter;
}

}

std::string rememberedText(std::string_view text)
{
    std::string kept;
    for (char character : text) {
        auto byte = static_cast<unsigned char>(character);
        if (byte >= 0x20 && byte != 0x7F)
            kept += character;
    }
    if (kept.size() <= OrderLimits::textBytes)
        return kept;
    auto end = OrderLimits::textBytes;
    while (end > 0 && (static_cast<unsigned char>(kept[end]) & 0xC0) == 0x80)
        --end;
    kept.resize(end);
    return kept;
}

std::optional<std::vector<RememberedOrder>> decodeOrders(std::string_view bytes)
{
    auto json = parseStoredJson(bytes, kNestingOfOrders);
    if (!json.is_object())
        return std::nullopt;
    auto* format = memberOf(json, "version");
    std::vector<RememberedOrder> orders;
    if (!format || *format != kFormat
        || !readElements(json, "sessions", OrderLimits::sessions, orders, readOrder))
        return std::nullopt;
    return orders;
}

std::string encodeOrders(std::vector<RememberedOrder> orders)
{
    for (;;) {
        const Json json{
            {"version", kFormat}, {"sessions", listOf(orders, OrderLimits::sessions, orderJson)}};
        auto text = storedText(json, kOneLine) + "\n";
        if (text.size() <= OrderLimits::fileBytes || !shorten(orders))
            return text;
    }
}

std::string withOrder(const std::optional<std::string>& file, RememberedOrder order)
{
    auto orders = file ? decodeOrders(*file).value_or(std::vector<RememberedOrder>{})
                       : std::vector<RememberedOrder>{};
    std::erase_if(orders, [&](auto& other) { return other.session == order.session; });
    orders.insert(orders.begin(), std::move(order));
    return encodeOrders(std::move(orders));
}

std::optional<RememberedOrder> orderFor(
    std::string_view session, std::vector<RememberedOrder> orders)
{
    auto own = std::ranges::find(orders, session, &RememberedOrder::session);
    if (own == orders.end())
        own = orders.begin();
    return own == orders.end() ? std::nullopt : std::optional{std::move(*own)};
}

}
