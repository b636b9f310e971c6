#pragma once

// What the host uses of CoreFoundation, declared for the simulated system. The types stay as
// opaque to the host as the real ones.

#include <cstdint>

extern "C" {
using Boolean = unsigned char;
using UInt8 = unsigned char;
using CFIndex = long;
using CFTypeID = unsigned long;
using CFHashCode = unsigned long;
using CFTypeRef = const void*;
using CFAllocatorRef = const struct CFAllocatorObject*;
using CFStringRef = const struct CFStringObject*;
using CFMutableStringRef = struct CFStringObject*;
using CFNumberRef = const struct CFNumberObject*;
using CFBooleanRef = const struct CFBooleanObject*;
using CFNullRef = const struct CFNullObject*;
using CFArrayRef = const struct CFArrayObject*;
using CFMutableArrayRef = struct CFArrayObject*;
using CFDictionaryRef = const struct CFDictionaryObject*;
using CFUUIDRef = const struct CFUUIDObject*;
using CFLocaleRef = const struct CFLocaleObject*;
using CFURLRef = const struct CFURLObject*;
using CFCharacterSetRef = const struct CFCharacterSetObject*;
using CFRunLoopRef = struct CFRunLoopObject*;
using CFRunLoopSourceRef = struct CFRunLoopSourceObject*;
using CFRunLoopMode = CFStringRef;
using CFStringEncoding = std::uint32_t;
using UniChar = std::uint16_t;
using UTF32Char = std::uint32_t;

enum CFNumberType : CFIndex {
    kCFNumberSInt8Type = 1,
    kCFNumberSInt16Type = 2,
    kCFNumberSInt32Type = 3,
    kCFNumberSInt64Type = 4,
    kCFNumberFloatType = 12,
    kCFNumberDoubleType = 13,
};

using CFStringCompareFlags = unsigned long;
enum : CFStringCompareFlags {
    kCFCompareCaseInsensitive = 1,
    kCFCompareLocalized = 32,
    kCFCompareDiacriticInsensitive = 128,
    kCFCompareWidthInsensitive = 256,
};
enum CFStringNormalizationForm : CFIndex { kCFStringNormalizationFormC = 2 };
enum CFCharacterSetPredefinedSet : CFIndex {
    kCFCharacterSetDecimalDigit = 4,
    kCFCharacterSetLetter = 5,
    kCFCharacterSetLowercaseLetter = 6,
    kCFCharacterSetUppercaseLetter = 7,
    kCFCharacterSetNonBase = 8,
    kCFCharacterSetAlphaNumeric = 10,
    kCFCharacterSetCapitalizedLetter = 13,
};

struct CFRange {
    CFIndex location;
    CFIndex length;
};
inline CFRange CFRangeMake(CFIndex location, CFIndex length)
{
    return {location, length};
}

struct CFArrayCallBacks {
    CFIndex version;
};
struct CFDictionaryKeyCallBacks {
    CFIndex version;
};
struct CFDictionaryValueCallBacks {
    CFIndex version;
};
extern const CFArrayCallBacks kCFTypeArrayCallBacks;
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

constexpr CFAllocatorRef kCFAllocatorDefault = nullptr;
constexpr CFStringEncoding kCFStringEncodingUTF8 = 0x08000100;
extern const CFBooleanRef kCFBooleanTrue;
extern const CFBooleanRef kCFBooleanFalse;
extern const CFNullRef kCFNull;
extern const CFRunLoopMode kCFRunLoopCommonModes;

CFTypeRef CFRetain(CFTypeRef);
void CFRelease(CFTypeRef);
CFTypeID CFGetTypeID(CFTypeRef);
Boolean CFEqual(CFTypeRef, CFTypeRef);
CFHashCode CFHash(CFTypeRef);

CFStringRef simulatedConstantString(const char* text);
#define CFSTR(text) simulatedConstantString(text)

CFTypeID CFStringGetTypeID();
CFStringRef CFStringCreateWithBytes(
    CFAllocatorRef, const UInt8* bytes, CFIndex count, CFStringEncoding, Boolean isExternal);
CFIndex CFStringGetLength(CFStringRef);
CFIndex CFStringGetBytes(CFStringRef, CFRange, CFStringEncoding, UInt8 lossByte, Boolean isExternal,
    UInt8* buffer, CFIndex size, CFIndex* used);

UniChar CFStringGetCharacterAtIndex(CFStringRef, CFIndex);
CFRange CFStringGetRangeOfComposedCharactersAtIndex(CFStringRef, CFIndex);
CFIndex CFStringCompareWithOptionsAndLocale(
    CFStringRef, CFStringRef, CFRange, CFStringCompareFlags, CFLocaleRef);
CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef, CFIndex capacity, CFStringRef);
void CFStringFold(CFMutableStringRef, CFStringCompareFlags, CFLocaleRef);
void CFStringLowercase(CFMutableStringRef, CFLocaleRef);
void CFStringNormalize(CFMutableStringRef, CFStringNormalizationForm);
CFLocaleRef CFLocaleCopyCurrent();
CFCharacterSetRef CFCharacterSetGetPredefined(CFCharacterSetPredefinedSet);
Boolean CFCharacterSetIsLongCharacterMember(CFCharacterSetRef, UTF32Char);

CFURLRef CFURLCreateFromFileSystemRepresentation(
    CFAllocatorRef, const UInt8* path, CFIndex length, Boolean isFolder);
CFDictionaryRef CFBundleCopyInfoDictionaryInDirectory(CFURLRef);

CFTypeRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef application);
void CFPreferencesSetAppValue(CFStringRef key, CFTypeRef value, CFStringRef application);
Boolean CFPreferencesAppSynchronize(CFStringRef application);

CFTypeID CFNumberGetTypeID();
CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType, const void* value);
Boolean CFNumberGetValue(CFNumberRef, CFNumberType, void* value);
CFTypeID CFBooleanGetTypeID();
Boolean CFBooleanGetValue(CFBooleanRef);

CFTypeID CFArrayGetTypeID();
CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef, CFIndex capacity, const CFArrayCallBacks*);
void CFArrayAppendValue(CFMutableArrayRef, CFTypeRef);
CFIndex CFArrayGetCount(CFArrayRef);
CFTypeRef CFArrayGetValueAtIndex(CFArrayRef, CFIndex);

CFTypeID CFDictionaryGetTypeID();
CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values,
    CFIndex count, const CFDictionaryKeyCallBacks*, const CFDictionaryValueCallBacks*);
CFTypeRef CFDictionaryGetValue(CFDictionaryRef, CFTypeRef key);

CFStringRef CFUUIDCreateString(CFAllocatorRef, CFUUIDRef);

CFRunLoopRef CFRunLoopGetCurrent();
void CFRunLoopAddSource(CFRunLoopRef, CFRunLoopSourceRef, CFRunLoopMode);
void CFRunLoopRemoveSource(CFRunLoopRef, CFRunLoopSourceRef, CFRunLoopMode);
}
