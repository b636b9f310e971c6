#include "Tests/MacSystem/Support/Strings.h"

#include <algorithm>
#include <cstring>
#include <set>

#include <glib.h>

#include "Hosts/Linux/Unicode/UnicodeText.h"
#include "Tests/MacSystem/Support/SimulatedMac.h"

namespace quorvel::test {

namespace {

constexpr bool isHighSurrogate(char16_t unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}
constexpr bool isLowSurrogate(char16_t unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}

/// The letters of this system serve for those of the other.
struct EnglishLetters final : xdg::UnicodeText {
    EnglishLetters() : UnicodeText("en") { }
    Size measure(std::string_view, const TextStyle&) const override { return {}; }
    LineLayout lineLayout(std::string_view, const TextStyle&) const override { return {}; }
};

void set(CFMutableStringRef string, const std::string& utf8)
{
    auto& object = Heap::shared().use(string);
    auto changed = textObject(decode(utf8).value());
    object.name = std::move(changed.name);
    object.content = std::move(changed.content);
}

/// What every call about letters must be given: the user's locale.
void checkLocale(CFLocaleRef locale)
{
    if (!locale || Heap::shared().use(locale).type != TypeID::locale)
        Heap::shared().note("text was compared or folded without a locale");
}

bool isMember(CFIndex set, GUnicodeType type)
{
    const auto is = [type](std::set<GUnicodeType> types) { return types.contains(type); };
    const bool isMark
        = is({G_UNICODE_NON_SPACING_MARK, G_UNICODE_SPACING_MARK, G_UNICODE_ENCLOSING_MARK});
    const bool isLetter = is({G_UNICODE_LOWERCASE_LETTER, G_UNICODE_UPPERCASE_LETTER,
        G_UNICODE_TITLECASE_LETTER, G_UNICODE_MODIFIER_LETTER, G_UNICODE_OTHER_LETTER});
    const bool isNumber
        = is({G_UNICODE_DECIMAL_NUMBER, G_UNICODE_LETTER_NUMBER, G_UNICODE_OTHER_NUMBER});
    switch (set) {
    case kCFCharacterSetDecimalDigit:
        return type == G_UNICODE_DECIMAL_NUMBER;
    case kCFCharacterSetLetter:
        return isLetter || isMark;
    case kCFCharacterSetLowercaseLetter:
        return type == G_UNICODE_LOWERCASE_LETTER;
    case kCFCharacterSetUppercaseLetter:
        return is({G_UNICODE_UPPERCASE_LETTER, G_UNICODE_TITLECASE_LETTER});
    case kCFCharacterSetNonBase:
        return isMark;
    case kCFCharacterSetAlphaNumeric:
        return isLetter || isMark || isNumber;
    case kCFCharacterSetCapitalizedLetter:
        return type == G_UNICODE_TITLECASE_LETTER;
    default:
        return false;
    }
}

}

std::string encode(std::u16string_view units, char lossByte)
{
    std::string out;
    for (std::size_t i = 0; i < units.size(); ++i) {
        gunichar c = units[i];
        if (isHighSurrogate(units[i]) && i + 1 < units.size() && isLowSurrogate(units[i + 1]))
            c = 0x10000 + ((c & 0x3FF) << 10) + (units[++i] & 0x3FFU);
        else if (isHighSurrogate(units[i]) || isLowSurrogate(units[i]))
            c = static_cast<unsigned char>(lossByte);
        char bytes[6];
        out.append(bytes, static_cast<std::size_t>(g_unichar_to_utf8(c, bytes)));
    }
    return out;
}

std::optional<std::u16string> decode(std::string_view bytes)
{
    const auto size = static_cast<glong>(bytes.size());
    if (!g_utf8_validate(bytes.data(), size, nullptr))
        return {};
    glong count = 0;
    auto* units = g_utf8_to_utf16(bytes.data(), size, nullptr, &count, nullptr);
    std::u16string out{units, units + count};
    g_free(units);
    return out;
}

Object textObject(Units text)
{
    return {TypeID::string, "string \"" + encode(text, '?') + "\"", std::move(text)};
}

CFStringRef createString(std::string_view utf8)
{
    auto units = decode(utf8);
    return units ? static_cast<CFStringRef>(Heap::shared().add(textObject(*units))) : nullptr;
}

std::string utf8(CFStringRef string)
{
    return encode(contentOf<Units>(string), '?');
}

}

using namespace quorvel::test;

CFTypeID CFStringGetTypeID()
{
    return static_cast<CFTypeID>(TypeID::string);
}

CFStringRef CFStringCreateWithBytes(
    CFAllocatorRef, const UInt8* bytes, CFIndex count, CFStringEncoding, Boolean)
{
    return createString({reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count)});
}

CFIndex CFStringGetLength(CFStringRef string)
{
    return static_cast<CFIndex>(contentOf<Units>(string).size());
}

// Only the whole text is ever asked for, first its size and then its bytes.
CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding, UInt8 lossByte,
    Boolean, UInt8* buffer, CFIndex size, CFIndex* used)
{
    const auto units = std::u16string_view{contentOf<Units>(string)}.substr(
        static_cast<std::size_t>(range.location), static_cast<std::size_t>(range.length));
    const auto bytes = encode(units, static_cast<char>(lossByte));
    if (buffer)
        std::copy_n(bytes.data(), std::min(bytes.size(), static_cast<std::size_t>(size)), buffer);
    if (used)
        *used = static_cast<CFIndex>(bytes.size());
    return range.length;
}

UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index)
{
    return contentOf<Units>(string).at(static_cast<std::size_t>(index));
}

CFRange CFStringGetRangeOfComposedCharactersAtIndex(CFStringRef string, CFIndex index)
{
    const auto whole = utf8(string);
    CFIndex start = 0;
    std::size_t byte = 0;
    for (const auto end : EnglishLetters{}.characterEnds(whole)) {
        const auto units = decode(whole.substr(byte, end - byte)).value().size();
        const auto next = start + static_cast<CFIndex>(units);
        if (index < next)
            return {start, next - start};
        start = next;
        byte = end;
    }
    return {index, 0};
}

CFIndex CFStringCompareWithOptionsAndLocale(CFStringRef first, CFStringRef second, CFRange range,
    CFStringCompareFlags flags, CFLocaleRef locale)
{
    checkLocale(locale);
    if (flags != (kCFCompareCaseInsensitive | kCFCompareLocalized)
        || range.length != CFStringGetLength(first))
        Heap::shared().note("names were compared in another way than users expect");
    const auto order = EnglishLetters{}.compare(utf8(first), utf8(second));
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef, CFIndex, CFStringRef string)
{
    auto copy = textObject(contentOf<Units>(string));
    return create<CFMutableStringRef>(TypeID::string, copy.name, copy.content);
}

void CFStringFold(CFMutableStringRef string, CFStringCompareFlags flags, CFLocaleRef locale)
{
    checkLocale(locale);
    if (flags
        != (kCFCompareCaseInsensitive | kCFCompareDiacriticInsensitive
            | kCFCompareWidthInsensitive))
        Heap::shared().note("text was folded in part");
    set(string, EnglishLetters{}.fold(utf8(string)));
}

void CFStringLowercase(CFMutableStringRef, CFLocaleRef locale)
{
    checkLocale(locale); // folded text is in lower case here
}

void CFStringNormalize(CFMutableStringRef string, CFStringNormalizationForm)
{
    auto* composed = g_utf8_normalize(utf8(string).c_str(), -1, G_NORMALIZE_DEFAULT_COMPOSE);
    set(string, composed);
    g_free(composed);
}

CFLocaleRef CFLocaleCopyCurrent()
{
    return create<CFLocaleRef>(TypeID::locale, "locale", {});
}

CFCharacterSetRef CFCharacterSetGetPredefined(CFCharacterSetPredefinedSet set)
{
    return reinterpret_cast<CFCharacterSetRef>(CFIndex{set});
}

Boolean CFCharacterSetIsLongCharacterMember(CFCharacterSetRef set, UTF32Char point)
{
    return isMember(reinterpret_cast<CFIndex>(set), g_unichar_type(point));
}
