#include "Quorvel/Core/SettingsCoding.h"

#include <array>
#include <type_traits>
#include <utility>

#include <nlohmann/json.hpp>

namespace quorvel {

namespace {

using Json = nlohmann::json;

/// In the order of the control's alternatives.
constexpr std::array<std::string_view, std::variant_size_v<SettingsControl>> kKinds{
    "toggle", "choice", "shortcut", "button", "text", "link", "list"};

Json parseLine(std::string_view line)
{
    return Json::parse(line, nullptr, /*allow_exceptions=*/false);
}

/// What other programs' files called an application may be no text.
std::string text(const Json& json)
{
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// MARK: Reading members; null or false where there is none of this kind

const Json* member(const Json& object, const char* name)
{
    if (!object.is_object())
        return nullptr;
    auto found = object.find(name);
    return found == object.end() ? nullptr : &*found;
}

bool read(const Json& object, const char* name, std::string& into)
{
    auto* found = member(object, name);
    if (!found || !found->is_string())
        return false;
    into = found->get<std::string>();
    return true;
}

bool read(const Json& object, const char* name, bool& into)
{
    auto* found = member(object, name);
    if (!found || !found->is_boolean())
        return false;
    into = found->get<bool>();
    return true;
}

template <typename Number> bool readNumber(const Json& object, const char* name, Number& into)
{
    auto* found = member(object, name);
    if (!found || !found->is_number_unsigned()
        || !std::in_range<Number>(found->get<std::uint64_t>()))
        return false;
    into = found->get<Number>();
    return true;
}

/// A text that may be left out.
void readText(const Json& object, const char* name, std::string& into)
{
    if (!read(object, name, into))
        into.clear();
}

template <typename Element, typename Read>
bool readList(const Json& object, const char* name, std::vector<Element>& into, Read readElement)
{
    auto* found = member(object, name);
    if (!found || !found->is_array())
        return false;
    for (auto& json : *found) {
        if (!readElement(json, into.emplace_back()))
            return false;
    }
    return true;
}

// MARK: Writing

void put(Json& object, const char* name, const std::string& value)
{
    if (!value.empty())
        object[name] = value;
}

template <typename Element, typename Write>
Json list(const std::vector<Element>& elements, Write write)
{
    auto json = Json::array();
    for (auto& element : elements)
        json.push_back(write(element));
    return json;
}

Json write(const std::optional<SettingsShortcut::Keys>& keys)
{
    if (!keys)
        return {};
    return {{"keyCode", keys->keyCode}, {"modifiers", keys->modifiers}};
}

bool read(const Json& json, SettingsShortcut::Keys& keys)
{
    return readNumber(json, "keyCode", keys.keyCode)
        && readNumber(json, "modifiers", keys.modifiers);
}

// MARK: Controls

void write(const SettingsToggle& toggle, Json& row)
{
    row["value"] = toggle.value;
}

bool read(const Json& row, SettingsToggle& toggle)
{
    return read(row, "value", toggle.value);
}

void write(const SettingsChoice& choice, Json& row)
{
    row["value"] = choice.value;
    row["choices"] = list(choice.options,
        [](auto& option) { return Json{{"value", option.value}, {"title", option.title}}; });
}

bool read(const Json& row, SettingsChoice& choice)
{
    return read(row, "value", choice.value)
        && readList(row, "choices", choice.options, [](auto& json, auto& option) {
               return read(json, "value", option.value) && read(json, "title", option.title);
           });
}

void write(const SettingsShortcut& shortcut, Json& row)
{
    row["value"] = write(shortcut.value);
    put(row, "text", shortcut.text);
    put(row, "status", shortcut.status);
    put(row, "recordHelp", shortcut.recordHelp);
}

bool read(const Json& row, SettingsShortcut& shortcut)
{
    auto* value = member(row, "value");
    if (!value
        || (!value->is_null() && !read(*value, shortcut.value.emplace(SettingsShortcut::Keys{}))))
        return false;
    readText(row, "text", shortcut.text);
    readText(row, "status", shortcut.status);
    readText(row, "recordHelp", shortcut.recordHelp);
    return true;
}

void write(const SettingsButton& button, Json& row)
{
    row["label"] = button.label;
}

bool read(const Json& row, SettingsButton& button)
{
    return read(row, "label", button.label);
}

void write(const SettingsText& fact, Json& row)
{
    row["value"] = fact.value;
}

bool read(const Json& row, SettingsText& fact)
{
    return read(row, "value", fact.value);
}

void write(const SettingsLink& link, Json& row)
{
    row["label"] = link.label;
    row["url"] = link.url;
}

bool read(const Json& row, SettingsLink& link)
{
    return read(row, "label", link.label) && read(row, "url", link.url);
}

void write(const SettingsList& things, Json& row)
{
    row["movable"] = things.isMovable;
    row["removable"] = things.isRemovable;
    row["items"] = list(things.items, [](auto& item) {
        Json json{{"id", item.id}, {"title", item.title}};
        put(json, "icon", item.icon);
        return json;
    });
}

bool read(const Json& row, SettingsList& things)
{
    return read(row, "movable", things.isMovable) && read(row, "removable", things.isRemovable)
        && readList(row, "items", things.items, [](auto& json, auto& item) {
               readText(json, "icon", item.icon);
               return read(json, "id", item.id) && read(json, "title", item.title);
           });
}

// MARK: The description

Json write(const SettingsRow& row)
{
    Json json{{"id", row.id}, {"kind", kKinds[row.control.index()]}, {"title", row.title},
        {"isEnabled", row.isEnabled}};
    put(json, "help", row.help);
    std::visit([&](auto& control) { write(control, json); }, row.control);
    return json;
}

template <std::size_t index = 0>
bool readControl(const Json& row, std::string_view kind, SettingsControl& into)
{
    if constexpr (index == std::variant_size_v<SettingsControl>) {
        return false;
    } else {
        if (kind != kKinds[index])
            return readControl<index + 1>(row, kind, into);
        return read(row, into.emplace<index>());
    }
}

bool read(const Json& json, SettingsRow& row)
{
    std::string kind;
    readText(json, "help", row.help);
    return read(json, "id", row.id) && read(json, "title", row.title)
        && read(json, "isEnabled", row.isEnabled) && read(json, "kind", kind)
        && readControl(json, kind, row.control);
}

bool read(const Json&, SettingsGroup&);
bool read(const Json&, SettingsPage&);

/// Of what is read as a whole.
template <typename Element>
bool readList(const Json& object, const char* name, std::vector<Element>& into)
{
    return readList(
        object, name, into, [](auto& json, auto& element) { return read(json, element); });
}

Json write(const SettingsGroup& group)
{
    Json json{{"id", group.id}};
    put(json, "title", group.title);
    put(json, "help", group.help);
    json["rows"] = list(group.rows, [](auto& row) { return write(row); });
    return json;
}

bool read(const Json& json, SettingsGroup& group)
{
    readText(json, "title", group.title);
    readText(json, "help", group.help);
    return read(json, "id", group.id) && readList(json, "rows", group.rows);
}

Json write(const SettingsPage& page)
{
    Json json{{"id", page.id}, {"title", page.title}};
    put(json, "icon", page.icon);
    json["groups"] = list(page.groups, [](auto& group) { return write(group); });
    return json;
}

bool read(const Json& json, SettingsPage& page)
{
    readText(json, "icon", page.icon);
    return read(json, "id", page.id) && read(json, "title", page.title)
        && readList(json, "groups", page.groups);
}

Json write(const SettingsDescription& description)
{
    return {{"version", description.version},
        {"pages", list(description.pages, [](auto& page) { return write(page); })}};
}

bool read(const Json& json, SettingsDescription& description)
{
    return read(json, "version", description.version) && readList(json, "pages", description.pages);
}

// MARK: The user's changes

Json write(const SettingsChange::Set& set)
{
    Json value;
    if (auto* isOn = std::get_if<bool>(&set.value))
        value = *isOn;
    else if (auto* chosen = std::get_if<std::string>(&set.value))
        value = *chosen;
    return {{"set", {{"row", set.row}, {"value", std::move(value)}}}};
}

bool read(const Json& json, SettingsChange::Set& set)
{
    auto* value = member(json, "value");
    if (value && value->is_boolean())
        set.value = value->get<bool>();
    else if (value && value->is_string())
        set.value = value->get<std::string>();
    return value && read(json, "row", set.row);
}

Json write(const SettingsChange::Press& press)
{
    return {{"press", {{"row", press.row}}}};
}

bool read(const Json& json, SettingsChange::Press& press)
{
    return read(json, "row", press.row);
}

Json write(const SettingsChange::Move& move)
{
    return {{"move", {{"row", move.row}, {"item", move.item}, {"to", move.to}}}};
}

bool read(const Json& json, SettingsChange::Move& move)
{
    return read(json, "row", move.row) && read(json, "item", move.item)
        && readNumber(json, "to", move.to);
}

Json write(const SettingsChange::Remove& remove)
{
    return {{"remove", {{"row", remove.row}, {"item", remove.item}}}};
}

bool read(const Json& json, SettingsChange::Remove& remove)
{
    return read(json, "row", remove.row) && read(json, "item", remove.item);
}

Json write(const SettingsChange::Record& record)
{
    auto json = record.keys ? write(record.keys) : Json{{"keyCode", nullptr}};
    json["row"] = record.row;
    return {{"record", std::move(json)}};
}

bool read(const Json& json, SettingsChange::Record& record)
{
    auto* keyCode = member(json, "keyCode");
    if (member(json, "row") && !read(json, "row", record.row))
        return false;
    return keyCode
        && (keyCode->is_null() || read(json, record.keys.emplace(SettingsShortcut::Keys{})));
}

template <typename Change> std::optional<SettingsRequest> request(const Json& json)
{
    Change change;
    if (!read(json, change))
        return std::nullopt;
    return SettingsRequest{SettingsChange{std::move(change)}};
}

Json write(const SettingsChange& change)
{
    return std::visit([](auto& what) { return write(what); }, change.what);
}

Json write(const SettingsRecording& recording)
{
    return {{"recording", recording.isOn}};
}

Json write(const SettingsQuestion&)
{
    return {{"ask", true}};
}

Json write(const SettingsPresent&)
{
    return {{"present", true}};
}

Json write(const SettingsRefusal& refusal)
{
    return {{"refused", {{"row", refusal.row}, {"reason", refusal.reason}}}};
}

}

std::string encodeSettingsNews(const SettingsNews& news)
{
    return text(std::visit([](auto& what) { return write(what); }, news));
}

std::optional<SettingsNews> decodeSettingsNews(std::string_view line)
{
    auto json = parseLine(line);
    if (auto* refused = member(json, "refused")) {
        SettingsRefusal refusal;
        bool isSound
            = read(*refused, "row", refusal.row) && read(*refused, "reason", refusal.reason);
        return isSound ? std::optional<SettingsNews>{std::move(refusal)} : std::nullopt;
    }
    bool isPresent = false;
    if (read(json, "present", isPresent) && isPresent)
        return SettingsPresent{};
    SettingsDescription description;
    return read(json, description) ? std::optional<SettingsNews>{std::move(description)}
                                   : std::nullopt;
}

std::string encodeSettingsRequest(const SettingsRequest& wanted)
{
    return text(std::visit([](auto& what) { return write(what); }, wanted));
}

std::optional<SettingsRequest> decodeSettingsRequest(std::string_view line)
{
    auto json = parseLine(line);
    if (auto* set = member(json, "set"))
        return request<SettingsChange::Set>(*set);
    if (auto* press = member(json, "press"))
        return request<SettingsChange::Press>(*press);
    if (auto* move = member(json, "move"))
        return request<SettingsChange::Move>(*move);
    if (auto* remove = member(json, "remove"))
        return request<SettingsChange::Remove>(*remove);
    if (auto* record = member(json, "record"))
        return request<SettingsChange::Record>(*record);
    SettingsRecording recording;
    if (read(json, "recording", recording.isOn))
        return recording;
    bool isQuestion = false;
    if (read(json, "ask", isQuestion) && isQuestion)
        return SettingsQuestion{};
    return std::nullopt;
}

}
