#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Hosts/MacOS/System/CFRef.h"
#include "Quorvel/Platform/Geometry.h"

namespace quorvel {

// CoreFoundation values, read by their type: null and any other type are absent. A boolean is not a
// number, nor is anything that is not finite. Nothing here takes ownership.

/// Whether all of them are finite: other programs can send "not a number" as well.
bool areFinite(std::initializer_list<double>);

CFRef<CFStringRef> makeString(std::string_view utf8);
CFRef<CFNumberRef> makeNumber(double);
CFRef<CFArrayRef> makeNumbers(const std::vector<std::uint64_t>&);

/// UTF-8; an unpaired surrogate becomes "?".
std::optional<std::string> textFrom(CFTypeRef);
std::optional<bool> truthFrom(CFTypeRef);
std::optional<double> doubleFrom(CFTypeRef);
/// A number without a fraction that fits the type.
std::optional<std::int32_t> int32From(CFTypeRef);
/// The low bits of a number: identifiers come as numbers of varying width and sign.
std::optional<std::int64_t> int64From(CFTypeRef);
std::optional<Rect> rectFrom(CFTypeRef);

CFArrayRef arrayFrom(CFTypeRef);
CFDictionaryRef dictionaryFrom(CFTypeRef);
CFTypeRef valueIn(CFDictionaryRef, CFStringRef key);

/// The numbers in a list; entries of other types are skipped.
std::vector<std::uint64_t> numbersFrom(CFArrayRef);

template <typename Visitor> void forEachIn(CFArrayRef array, Visitor visit)
{
    const CFIndex count = CFArrayGetCount(array);
    for (CFIndex index = 0; index < count; ++index)
        visit(CFArrayGetValueAtIndex(array, index));
}

}
