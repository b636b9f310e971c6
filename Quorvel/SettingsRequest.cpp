#include "Quorvel/SettingsRequest.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <string_view>
#include <type_traits>

#include <fmt/format.h>

#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Core/UserSettingsCoding.h"

namespace quorvel {

namespace {

ControlReply refusal(const std::string& problem)
{
    return {1, "", fmt::format("quorvel: {}\n", problem)};
}

ControlReply noSuchSetting(std::string_view name)
{
    return refusal(fmt::format("there is no setting '{}'; --get lists all", name));
}

template <typename Enumeration, std::size_t count>
std::vector<std::string_view> textsOf(const std::array<Enumeration, count>& values)
{
    std::vector<std::string_view> texts;
    texts.reserve(count);
    for (auto value : values)
        texts.push_back(rawValue(value));
    return texts;
}

/// What a field that is kept as text can be.
std::vector<std::string_view> choices(std::string_view name)
{
    if (name == "barSize")
        return textsOf(kAllBarSizes);
    if (name == "theme")
        return textsOf(kAllBarThemes);
    return textsOf(kAllSpaceScrollUpBehaviors);
}

std::string expectation(std::string_view name)
{
    std::string expected;
    const UserSettingsData data;
    UserSettingsData::forEachSetting(data, [&](std::string_view candidate, const auto& field) {
        using Field = std::remove_cvref_t<decltype(field)>;
        if (candidate != name)
            return;
        if constexpr (std::is_same_v<Field, bool>)
            expected = "true or false";
        else if constexpr (std::is_same_v<Field, std::optional<bool>>)
            expected = "true, false or null";
        else if constexpr (std::is_same_v<Field, std::string>)
            expected = fmt::format("one of {}", fmt::join(choices(name), ", "));
        else if constexpr (std::is_same_v<Field, std::optional<std::map<std::string, std::string>>>)
            expected = "an object of texts, or null";
        else
            expected = fmt::format(
                "a whole number from 0 to {}, or null", std::numeric_limits<std::uint32_t>::max());
    });
    return fmt::format("{} is {}", name, expected);
}

bool hasUnknownText(const UserSettingsData& data, std::string_view name)
{
    bool isUnknown = false;
    UserSettingsData::forEachField(data, [&](std::string_view candidate, const auto& field) {
        if constexpr (std::is_same_v<std::remove_cvref_t<decltype(field)>, std::string>) {
            if (candidate == name) {
                auto known = choices(name);
                isUnknown = std::ranges::find(known, field) == known.end();
            }
        }
    });
    return isUnknown;
}

ControlReply get(const UserSettings& settings, const std::string& name)
{
    auto encoded = encodeUserSetting(settings.dataThatHolds(), name);
    return encoded ? ControlReply{0, *encoded + "\n", ""} : noSuchSetting(name);
}

ControlReply setRunAtLogin(UserSettings& settings, bool isWanted)
{
    settings.setRunAtLogin(isWanted);
    return settings.runAtLogin() == isWanted ? ControlReply{}
                                             : refusal("the system refuses to change runAtLogin");
}

ControlReply change(UserSettings& settings, std::string_view name, std::string_view value)
{
    auto data = settings.data().value();
    if (!encodeUserSetting(data, name))
        return noSuchSetting(name);
    if (name == "settingsVersion" || name == "pinnedApps")
        return refusal(fmt::format("{} cannot be set", name));
    if (!decodeUserSetting(data, name, value) || hasUnknownText(data, name))
        return refusal(expectation(name));
    if (name == "runAtLogin")
        return setRunAtLogin(settings, data.runAtLogin);
    settings.setData(std::move(data));
    return {};
}

/// Who asks may end the bar next, or read the file.
ControlReply set(UserSettings& settings, std::string_view name, std::string_view value)
{
    auto reply = change(settings, name, value);
    if (reply.exitStatus != 0 || settings.saveChanges())
        return reply;
    return refusal(fmt::format("{} is changed, but {}", name,
        settings.fileURL().empty() ? "there is no place to save it"
                                   : settings.fileURL() + " cannot be written"));
}

}

bool isSettingsRequest(const std::vector<std::string>& arguments)
{
    if (arguments.empty() || arguments.size() > 2)
        return false;
    return arguments[0] == "--get" || (arguments[0] == "--set" && arguments.size() == 2);
}

ControlReply answerSettingsRequest(
    UserSettings& settings, const std::vector<std::string>& arguments)
{
    if (arguments.size() == 1)
        return {0, listUserSettings(settings.dataThatHolds()), ""};
    if (arguments[0] == "--get")
        return get(settings, arguments[1]);
    auto equals = arguments[1].find('=');
    if (equals == std::string::npos)
        return refusal("--set takes FIELD=VALUE");
    std::string_view assignment = arguments[1];
    return set(settings, assignment.substr(0, equals), assignment.substr(equals + 1));
}

}
