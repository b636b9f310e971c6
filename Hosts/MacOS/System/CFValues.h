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

// Values of CoreFoundation, read by their type: null and every other type are absent. A truth value
// is no number, nor is what is not finite. Nothing here takes a reference.

/// Whether all are numbers to compute with: other programs can send "not a number" as well.
bool areFinite(std::initializer_list<double>);

CFRef<CFStringRef> makeString(std::string_view utf8);
CFRef<CFNumberRef> makeNumber(double);
CFRef<CFArrayRef> makeNumbers(const std::vector<std::uint64_t>&);

/// UTF-8; half of a surrogate pair becomes "?".
std::optional<std::string> textFrom(CFTypeRef);
std::optional<bool> truthFrom(CFTypeRef);
std::optional<double> doubleFrom(CFTypeRef);
/// A number that fits, without a fraction.
std::optional<std::int32_t> int32From(CFTypeRef);
/// The low bits of a number: identifiers come in numbers of varied width and sign.
std::optional<std::int64_t> int64From(CFTypeRef);
std::optional<Rect> rectFrom(CFTypeRef);

CFArrayRef arrayFrom(CFTypeRef);
CFDictionaryRef dictionaryFrom(CFTypeRef);
CFTypeRef valueIn(CFDictionaryRef, CFStringRef key);

/// The numbers of a list; entries of other types are left out.
std::vector<std::uint64_t> numbersFrom(CFArrayRef);

template <typename Visitor> void forEachIn(CFArrayRef array, Visitor visit)
{
    const CFIndex count = CFArrayGetCount(array);
    for (CFIndex index = 0; index < count; ++index)
        visit(static_cast<CFTypeRef>(CFArrayGetValueAtIndex(array, index)));
}

}
