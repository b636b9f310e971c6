#include "Quorvel/Core/UserSettingsCoding.h"

#include <cmath>
#include <concepts>
#include <limits>
#include <utility>

#include <nlohmann/json.hpp>

#include "Quorvel/Core/StoredJson.h"

namespace quorvel {

namespace {

using Json = nlohmann::json; // its objects are sorted

constexpr int kIndent = 2;
/// The record itself has three levels.
constexpr int kDeepestNesting = 8;
constexpr char kMore[] = "more";

Json parseStored(std::string_view bytes)
{
    return parseStoredJson(bytes, kDeepestNesting);
}

// MARK: Values; false for a value of another type

bool read(const Json& json, std::string& into)
{
    if (json.is_string())
        into = json.get<std::string>();
    return json.is_string();
}

bool read(const Json& json, bool& into)
{
    if (json.is_boolean())
        into = json.get<bool>();
    return json.is_boolean();
}

/// JSON has one kind of number: 49.0 is 49.
std::optional<std::int64_t> wholeNumber(const Json& json)
{
    constexpr double limit = 9.2e18; // every double below fits
    if (json.is_number_unsigned()) {
        auto number = json.get<std::uint64_t>();
        return std::in_range<std::int64_t>(number)
            ? std::optional{static_cast<std::int64_t>(number)}
            : std::nullopt;
    }
    if (json.is_number_integer())
        return json.get<std::int64_t>();
    if (!json.is_number_float())
        return std::nullopt;
    auto number = json.get<double>();
    if (!(std::abs(number) < limit) || std::trunc(number) != number)
        return std::nullopt;
    return static_cast<std::int64_t>(number);
}

template <std::integral Integer> bool read(const Json& json, Integer& into)
{
    auto number = wholeNumber(json);
    if (!number || !std::in_range<Integer>(*number))
        return false;
    into = static_cast<Integer>(*number);
    return true;
}

bool read(const Json& json, std::map<std::string, std::string>& into)
{
    if (!json.is_object())
        return false;
    std::map<std::string, std::string> texts;
    for (auto& [name, value] : json.items()) {
        if (!read(value, texts[name]))
            return false;
    }
    into = std::move(texts);
    return true;
}

template <typename Value> bool read(const Json& json, std::optional<Value>& into)
{
    if (json.is_null()) {
        into.reset();
        return true;
    }
    Value value{};
    if (!read(json, value))
        return false;
    into = value;
    return true;
}

bool read(const Json& json, PinnedAppRecord& into)
{
    if (!json.is_object())
        return false;
    auto id = json.find("id");
    auto destinations = json.find("d");
    return id != json.end() && destinations != json.end() && read(*id, into.id)
        && read(*destinations, into.destinationsRaw);
}

bool read(const Json& json, std::vector<PinnedAppRecord>& into)
{
    if (!json.is_array())
        return false;
    std::vector<PinnedAppRecord> records;
    for (auto& element : json) {
        if (!read(element, records.emplace_back()))
            return false;
    }
    into = std::move(records);
    return true;
}

template <typename Value> Json write(const Value& value)
{
    return value;
}

template <typename Value> Json write(const std::optional<Value>& value)
{
    return value ? Json(*value) : Json();
}

template <typename Value> constexpr bool mayBeAbsent(const Value&)
{
    return false;
}

template <typename Value> constexpr bool mayBeAbsent(const std::optional<Value>&)
{
    return true;
}

Json write(const std::vector<PinnedAppRecord>& records)
{
    auto list = Json::array();
    for (auto& record : records)
        list.push_back({{"id", record.id}, {"d", record.destinationsRaw}});
    return list;
}

// MARK: Records

template <typename Record> bool readRecord(const Json& json, Record& record)
{
    if (!json.is_object())
        return false;
    bool isSound = true;
    Record::forEachField(record, [&](const char* name, auto& field) {
        auto found = json.find(name);
        if (found != json.end() && !found->is_null())
            isSound = read(*found, field) && isSound;
    });
    return isSound;
}

template <typename Record> Json writeRecord(const Record& record)
{
    auto json = Json::object();
    Record::forEachField(record, [&](const char* name, auto& field) {
        if (auto value = write(field); !value.is_null())
            json[name] = std::move(value);
    });
    return json;
}

template <typename Record> void reviseRecord(Json& json, const Record& before, const Record& now)
{
    auto known = writeRecord(before);
    Record::forEachField(now, [&](const char* name, auto& field) {
        auto value = write(field);
        bool isLacking = !mayBeAbsent(field) && !json.contains(name);
        if (value == known.value(name, Json()) && !isLacking)
            return;
        if (value.is_null())
            json.erase(name);
        else
            json[name] = std::move(value);
    });
}

void reviseMore(Json& json, const MoreSettings& before, const MoreSettings& now)
{
    if (before == now)
        return;
    auto more = json.value(kMore, Json());
    if (more.is_null())
        more = Json::object();
    reviseRecord(more, before, now);
    if (more.empty())
        json.erase(kMore);
    else
        json[kMore] = std::move(more);
}

}

std::string encodeUserSettings(const UserSettingsData& data)
{
    auto json = writeRecord(data);
    reviseMore(json, {}, data.more);
    return storedText(json, kIndent) + "\n";
}

std::string listUserSettings(const UserSettingsData& data)
{
    auto json = Json::object();
    UserSettingsData::forEachSetting(
        data, [&](const char* name, auto& field) { json[name] = write(field); });
    return storedText(json, kIndent) + "\n";
}

std::optional<std::string> reviseUserSettings(
    std::string_view file, const UserSettingsData& before, const UserSettingsData& now)
{
    if (!decodeUserSettings(file, now))
        return std::nullopt;
    auto json = parseStored(file);
    reviseRecord(json, before, now);
    reviseMore(json, before.more, now.more);
    return storedText(json, kIndent) + "\n";
}

std::optional<UserSettingsData> decodeUserSettings(
    std::string_view bytes, const UserSettingsData& defaults)
{
    auto json = parseStored(bytes);
    auto data = defaults;
    if (!readRecord(json, data))
        return std::nullopt;
    auto more = json.value(kMore, Json());
    if (!more.is_null() && !readRecord(more, data.more))
        return std::nullopt;
    return data;
}

std::optional<std::string> encodeUserSetting(const UserSettingsData& data, std::string_view name)
{
    std::optional<std::string> encoded;
    UserSettingsData::forEachSetting(data, [&](std::string_view candidate, auto& field) {
        if (candidate == name)
            encoded = storedText(write(field), -1);
    });
    return encoded;
}

bool decodeUserSetting(UserSettingsData& data, std::string_view name, std::string_view value)
{
    auto json = parseStored(value);
    if (json.is_discarded())
        json = std::string{value};
    bool isSet = false;
    UserSettingsData::forEachSetting(data, [&](std::string_view candidate, auto& field) {
        if (candidate == name)
            isSet = read(json, field);
    });
    return isSet;
}

}
