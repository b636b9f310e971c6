#include "Hosts/MacOS/System/CFText.h"

#include "Hosts/MacOS/System/CFValues.h"

namespace quorvel {

namespace {

constexpr CFStringCompareFlags kFolding
    = kCFCompareCaseInsensitive | kCFCompareDiacriticInsensitive | kCFCompareWidthInsensitive;
constexpr CFStringCompareFlags kOrder = kCFCompareCaseInsensitive | kCFCompareLocalized;

CFRef<CFLocaleRef> currentLocale()
{
    return CFRef<CFLocaleRef>::adopt(CFLocaleCopyCurrent());
}

bool isIn(CFCharacterSetPredefinedSet set, char32_t point)
{
    return CFCharacterSetIsLongCharacterMember(CFCharacterSetGetPredefined(set), point);
}

/// Of the UTF-16 unit in UTF-8; two halves of a character outside the basic plane share four.
std::size_t bytesOf(UniChar unit)
{
    if (unit < 0x80)
        return 1;
    const bool isHalf = unit >= 0xD800 && unit <= 0xDFFF;
    return unit < 0x800 || isHalf ? 2 : 3;
}

/// For bytes that are no UTF-8: each is a character.
std::vector<std::size_t> endsOfBytes(std::size_t count)
{
    std::vector<std::size_t> ends(count);
    for (std::size_t i = 0; i < count; ++i)
        ends[i] = i + 1;
    return ends;
}

}

std::string CFText::fold(std::string_view utf8) const
{
    const auto text = makeString(utf8);
    if (!text)
        return std::string{utf8};
    const auto folded = CFRef<CFMutableStringRef>::adopt(
        CFStringCreateMutableCopy(kCFAllocatorDefault, 0, text.get()));
    const auto locale = currentLocale();
    CFStringFold(folded.get(), kFolding, locale.get());
    CFStringLowercase(folded.get(), locale.get());
    // Names of files are decomposed on some volumes, and typed text is not.
    CFStringNormalize(folded.get(), kCFStringNormalizationFormC);
    return textFrom(folded.get()).value_or(std::string{});
}

std::weak_ordering CFText::compare(std::string_view a, std::string_view b) const
{
    const auto first = makeString(a);
    const auto second = makeString(b);
    if (!first || !second)
        return a <=> b;
    const auto locale = currentLocale();
    const CFIndex order = CFStringCompareWithOptionsAndLocale(first.get(), second.get(),
        CFRangeMake(0, CFStringGetLength(first.get())), kOrder, locale.get());
    return order <=> 0;
}

CharacterClass CFText::classOf(char32_t point) const
{
    if (isIn(kCFCharacterSetDecimalDigit, point))
        return CharacterClass::decimalDigit;
    // The system counts marks among the letters, and title case among the capitals.
    if (!isIn(kCFCharacterSetAlphaNumeric, point) || isIn(kCFCharacterSetNonBase, point))
        return CharacterClass::other;
    if (!isIn(kCFCharacterSetLetter, point))
        return CharacterClass::otherNumber;
    if (isIn(kCFCharacterSetLowercaseLetter, point))
        return CharacterClass::lowerCaseLetter;
    const bool isCapital = isIn(kCFCharacterSetUppercaseLetter, point)
        && !isIn(kCFCharacterSetCapitalizedLetter, point);
    return isCapital ? CharacterClass::upperCaseLetter : CharacterClass::otherLetter;
}

std::vector<std::size_t> CFText::characterEnds(std::string_view utf8) const
{
    const auto text = makeString(utf8);
    if (!text)
        return endsOfBytes(utf8.size());
    std::vector<std::size_t> ends;
    std::size_t bytes = 0;
    const CFIndex length = CFStringGetLength(text.get());
    for (CFIndex at = 0; at < length;) {
        const CFRange range = CFStringGetRangeOfComposedCharactersAtIndex(text.get(), at);
        const CFIndex end = range.location + range.length;
        for (; at < end; ++at)
            bytes += bytesOf(CFStringGetCharacterAtIndex(text.get(), at));
        ends.push_back(bytes);
    }
    return ends;
}

}
