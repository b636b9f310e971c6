#include "Hosts/MacOS/System/CFValues.h"

#include <algorithm>
#include <cmath>

namespace quorvel {

namespace {

bool isOfType(CFTypeRef value, CFTypeID type)
{
    return value && CFGetTypeID(value) == type;
}

CFNumberRef numberFrom(CFTypeRef value)
{
    return isOfType(value, CFNumberGetTypeID()) ? static_cast<CFNumberRef>(value) : nullptr;
}

}

bool areFinite(std::initializer_list<double> numbers)
{
    return std::ranges::all_of(numbers, [](double number) { return std::isfinite(number); });
}

CFRef<CFStringRef> makeString(std::string_view utf8)
{
    return CFRef<CFStringRef>::adopt(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(utf8.data()),
            static_cast<CFIndex>(utf8.size()), kCFStringEncodingUTF8, false));
}

CFRef<CFNumberRef> makeNumber(double value)
{
    return CFRef<CFNumberRef>::adopt(
        CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &value));
}

CFRef<CFArrayRef> makeNumbers(const std::vector<std::uint64_t>& values)
{
    auto array = CFRef<CFMutableArrayRef>::adopt(CFArrayCreateMutable(
        kCFAllocatorDefault, static_cast<CFIndex>(values.size()), &kCFTypeArrayCallBacks));
    for (const std::uint64_t value : values) {
        const auto signedValue = static_cast<std::int64_t>(value);
        auto number = CFRef<CFNumberRef>::adopt(
            CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &signedValue));
        CFArrayAppendValue(array.get(), number.get());
    }
    return CFRef<CFArrayRef>::retain(array.get());
}

std::optional<std::string> textFrom(CFTypeRef value)
{
    if (!isOfType(value, CFStringGetTypeID()))
        return {};
    const auto string = static_cast<CFStringRef>(value);
    const CFRange all = CFRangeMake(0, CFStringGetLength(string));
    CFIndex size = 0;
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, '?', false, nullptr, 0, &size);
    std::string text(static_cast<std::size_t>(size), '\0');
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, '?', false,
        reinterpret_cast<UInt8*>(text.data()), size, nullptr);
    return text;
}

std::optional<bool> truthFrom(CFTypeRef value)
{
    if (!isOfType(value, CFBooleanGetTypeID()))
        return {};
    return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) != 0;
}

std::optional<double> doubleFrom(CFTypeRef value)
{
    double result = 0;
    const CFNumberRef number = numberFrom(value);
    if (!number)
        return {};
    // The call's answer only says whether precision was lost.
    CFNumberGetValue(number, kCFNumberDoubleType, &result);
    return areFinite({result}) ? std::optional{result} : std::nullopt;
}

std::optional<std::int32_t> int32From(CFTypeRef value)
{
    std::int32_t result = 0;
    const CFNumberRef number = numberFrom(value);
    if (!number || !CFNumberGetValue(number, kCFNumberSInt32Type, &result))
        return {};
    return result;
}

std::optional<std::int64_t> int64From(CFTypeRef value)
{
    std::int64_t result = 0;
    const CFNumberRef number = numberFrom(value);
    if (!number)
        return {};
    CFNumberGetValue(number, kCFNumberSInt64Type, &result);
    return result;
}

std::optional<Rect> rectFrom(CFTypeRef value)
{
    CGRect rect{};
    const CFDictionaryRef dictionary = dictionaryFrom(value);
    if (!dictionary || !CGRectMakeWithDictionaryRepresentation(dictionary, &rect))
        return {};
    if (!areFinite({rect.origin.x, rect.origin.y, rect.size.width, rect.size.height}))
        return {};
    return Rect{rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

CFArrayRef arrayFrom(CFTypeRef value)
{
    return isOfType(value, CFArrayGetTypeID()) ? static_cast<CFArrayRef>(value) : nullptr;
}

CFDictionaryRef dictionaryFrom(CFTypeRef value)
{
    return isOfType(value, CFDictionaryGetTypeID()) ? static_cast<CFDictionaryRef>(value) : nullptr;
}

CFTypeRef valueIn(CFDictionaryRef dictionary, CFStringRef key)
{
    return key ? CFDictionaryGetValue(dictionary, key) : nullptr;
}

std::vector<std::uint64_t> numbersFrom(CFArrayRef array)
{
    std::vector<std::uint64_t> numbers;
    forEachIn(array, [&](CFTypeRef entry) {
        if (auto number = int64From(entry))
            numbers.push_back(static_cast<std::uint64_t>(*number));
    });
    return numbers;
}

}
