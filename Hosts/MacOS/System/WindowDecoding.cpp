#include "Hosts/MacOS/System/WindowDecoding.h"

#include "Hosts/MacOS/System/CFValues.h"

namespace quorvel {

namespace {

std::optional<std::uint64_t> identifierIn(CFDictionaryRef dictionary, CFStringRef key)
{
    const auto number = int64From(valueIn(dictionary, key));
    return number ? std::optional{static_cast<std::uint64_t>(*number)} : std::nullopt;
}

ManagedSpace spaceFrom(CFTypeRef value)
{
    const CFDictionaryRef dictionary = dictionaryFrom(value);
    if (!dictionary)
        return {};
    return {identifierIn(dictionary, CFSTR("id64")),
        identifierIn(dictionary, CFSTR("ManagedSpaceID")),
        int64From(valueIn(dictionary, CFSTR("type"))),
        textFrom(valueIn(dictionary, CFSTR("uuid")))};
}

ManagedDisplay displayFrom(CFTypeRef value)
{
    ManagedDisplay display;
    const CFDictionaryRef dictionary = dictionaryFrom(value);
    if (!dictionary)
        return display;
    const CFTypeRef identifier = valueIn(dictionary, CFSTR("Display Identifier"));
    if (auto text = textFrom(identifier))
        display.identifier = std::move(*text);
    else if (auto number = int64From(identifier))
        display.identifier = *number;
    if (const CFArrayRef spaces = arrayFrom(valueIn(dictionary, CFSTR("Spaces"))))
        forEachIn(spaces, [&](CFTypeRef e) { display.spaces.push_back(spaceFrom(e)); });
    const CFTypeRef current = valueIn(dictionary, CFSTR("Current Space"));
    if (dictionaryFrom(current))
        display.currentSpace = spaceFrom(current);
    return display;
}

}

WindowDecoder::WindowDecoder()
    : m_windowNumber(makeString(CGWindowKeys::windowNumber))
    , m_ownerPID(makeString(CGWindowKeys::ownerPID))
    , m_ownerName(makeString(CGWindowKeys::ownerName))
    , m_windowName(makeString(CGWindowKeys::windowName))
    , m_layer(makeString(CGWindowKeys::layer))
    , m_bounds(makeString(CGWindowKeys::bounds))
    , m_alpha(makeString(CGWindowKeys::alpha))
{
}

std::optional<ProcessID> WindowDecoder::ownerPID(CFDictionaryRef window) const
{
    const auto pid = int32From(valueIn(window, m_ownerPID.get()));
    return pid ? std::optional{ProcessID{*pid}} : std::nullopt;
}

CGWindowInfo WindowDecoder::decode(CFDictionaryRef window) const
{
    CGWindowInfo info;
    if (auto number = int64From(valueIn(window, m_windowNumber.get())))
        info.windowNumber = WindowID{static_cast<std::uint32_t>(*number)};
    info.ownerPID = ownerPID(window);
    if (auto alpha = doubleFrom(valueIn(window, m_alpha.get())))
        info.alpha = static_cast<float>(*alpha);
    info.layer = int32From(valueIn(window, m_layer.get()));
    info.bounds = rectFrom(valueIn(window, m_bounds.get()));
    info.ownerName = textFrom(valueIn(window, m_ownerName.get()));
    // Missing for the windows of others until the user allows screen recording.
    info.windowName = textFrom(valueIn(window, m_windowName.get()));
    return info;
}

std::vector<ManagedDisplay> managedDisplaysFrom(CFArrayRef array)
{
    std::vector<ManagedDisplay> displays;
    forEachIn(array, [&](CFTypeRef entry) { displays.push_back(displayFrom(entry)); });
    return displays;
}

}
