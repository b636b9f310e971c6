#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <optional>
#include <variant>

#include <glib.h>

#include "Tests/MacSystem/Support/Objects.h"
#include "Tests/MacSystem/Support/Strings.h"
#include "Tests/MacSystem/Support/Values.h"

namespace quorvel::test {

namespace {

struct Number final : Object {
    explicit Number(std::variant<std::int64_t, double> number)
        : Object(TypeID::number)
        , value(number)
    {
    }
    std::string description() const override
    {
        return "number " + std::visit([](auto number) { return std::to_string(number); }, value);
    }

    std::variant<std::int64_t, double> value;
};

struct Truth final : Object {
    explicit Truth(bool truthValue) : Object(TypeID::boolean), value(truthValue) { }
    std::string description() const override { return value ? "true" : "false"; }

    bool value;
};

struct Null final : Object {
    Null() : Object(TypeID::null) { }
    std::string description() const override { return "null object"; }
};

struct Array final : Object {
    Array() : Object(TypeID::array) { }
    std::string description() const override { return "array of " + std::to_string(values.size()); }
    void dispose() override { values.clear(); }

    std::vector<Value> values;
};

struct Dictionary final : Object {
    Dictionary() : Object(TypeID::dictionary) { }
    std::string description() const override
    {
        return "dictionary of " + std::to_string(entries.size());
    }
    void dispose() override { entries.clear(); }

    std::vector<std::pair<Value, Value>> entries;
};

struct UUID final : Object {
    explicit UUID(std::string_view value) : Object(TypeID::uuid), text(value) { }
    std::string description() const override { return "uuid " + text; }

    std::string text;
};

/// An object that the system never frees.
template <typename Ref, typename Type, typename... Arguments> Ref constant(Arguments... arguments)
{
    auto object = std::make_unique<Type>(arguments...);
    const auto ref = reinterpret_cast<Ref>(static_cast<Object*>(object.get()));
    Heap::shared().addConstant(std::move(object));
    return ref;
}

template <typename Integer> bool store(std::variant<std::int64_t, double> from, void* to)
{
    Integer result{};
    bool isExact = false;
    if (const auto* whole = std::get_if<std::int64_t>(&from)) {
        result = static_cast<Integer>(*whole); // the low bits
        isExact = static_cast<std::int64_t>(result) == *whole;
    } else {
        const double value = std::get<double>(from);
        constexpr auto low = static_cast<double>(std::numeric_limits<Integer>::min());
        // One above the largest, which a double may not be able to hold.
        constexpr double high = -low;
        if (value >= high)
            result = std::numeric_limits<Integer>::max();
        else if (value < low)
            result = std::numeric_limits<Integer>::min();
        else if (!std::isnan(value))
            result = static_cast<Integer>(value);
        isExact = value >= low && value < high && static_cast<double>(result) == value;
    }
    std::memcpy(to, &result, sizeof result);
    return isExact;
}

template <typename Type> Type load(const void* from)
{
    Type value{};
    std::memcpy(&value, from, sizeof value);
    return value;
}

std::variant<std::int64_t, double> loadNumber(CFNumberType type, const void* from)
{
    switch (type) {
    case kCFNumberSInt8Type:
        return std::int64_t{load<std::int8_t>(from)};
    case kCFNumberSInt16Type:
        return std::int64_t{load<std::int16_t>(from)};
    case kCFNumberSInt32Type:
        return std::int64_t{load<std::int32_t>(from)};
    case kCFNumberSInt64Type:
        return load<std::int64_t>(from);
    case kCFNumberFloatType:
        return double{load<float>(from)};
    case kCFNumberDoubleType:
        break;
    }
    return load<double>(from);
}

}

Value text(std::string_view utf8)
{
    return Value::adopt(createString(utf8));
}

Value utf16(std::u16string units)
{
    return Value::adopt(create<CFStringRef, String>(std::move(units)));
}

Value number(std::int64_t value, CFNumberType width)
{
    return Value::adopt(CFNumberCreate(nullptr, width, &value)); // little-endian: the low bytes
}

Value real(double value, CFNumberType width)
{
    const auto narrow = static_cast<float>(value);
    const bool isNarrow = width == kCFNumberFloatType;
    return Value::adopt(
        CFNumberCreate(nullptr, width, isNarrow ? static_cast<const void*>(&narrow) : &value));
}

Value truth(bool value)
{
    return Value::retain(value ? kCFBooleanTrue : kCFBooleanFalse);
}

Value null()
{
    return Value::retain(kCFNull);
}

Value array(std::vector<Value> values)
{
    const auto ref = CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks);
    expectObject<Array>(ref).values = std::move(values);
    return Value::adopt(ref);
}

Value dictionary(std::vector<std::pair<std::string, Value>> entries)
{
    std::vector<Value> names;
    std::vector<const void*> keys;
    std::vector<const void*> values;
    for (const auto& [name, value] : entries) {
        if (!value)
            continue;
        names.push_back(text(name));
        keys.push_back(names.back().get());
        values.push_back(value.get());
    }
    return Value::adopt(
        CFDictionaryCreate(nullptr, keys.data(), values.data(), static_cast<CFIndex>(keys.size()),
            &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
}

Value rectangle(double x, double y, double width, double height)
{
    return dictionary(
        {{"X", real(x)}, {"Y", real(y)}, {"Width", real(width)}, {"Height", real(height)}});
}

Value uuid(std::string_view value)
{
    return Value::adopt(create<CFUUIDRef, UUID>(value));
}

}

using namespace quorvel::test;

const CFArrayCallBacks kCFTypeArrayCallBacks{};
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks{};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks{};
const CFBooleanRef kCFBooleanTrue = constant<CFBooleanRef, Truth>(true);
const CFBooleanRef kCFBooleanFalse = constant<CFBooleanRef, Truth>(false);
const CFNullRef kCFNull = constant<CFNullRef, Null>();
const CFRunLoopMode kCFRunLoopCommonModes = CFSTR("kCFRunLoopCommonModes");

CFStringRef simulatedConstantString(const char* text)
{
    static std::map<std::string, CFStringRef, std::less<>> constants;
    auto& known = constants[text];
    if (!known)
        known = constant<CFStringRef, String>(decode(text).value());
    return known;
}

CFTypeID CFNumberGetTypeID()
{
    return static_cast<CFTypeID>(TypeID::number);
}

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void* value)
{
    return create<CFNumberRef, Number>(loadNumber(type, value));
}

Boolean CFNumberGetValue(CFNumberRef ref, CFNumberType type, void* out)
{
    const auto value = expectObject<Number>(ref).value;
    if (type == kCFNumberSInt32Type)
        return store<std::int32_t>(value, out);
    if (type == kCFNumberSInt64Type)
        return store<std::int64_t>(value, out);
    const double number = std::visit([](auto held) { return static_cast<double>(held); }, value);
    std::memcpy(out, &number, sizeof number);
    const auto* whole = std::get_if<std::int64_t>(&value);
    return !whole || std::abs(*whole) <= std::int64_t{1} << 53;
}

CFTypeID CFBooleanGetTypeID()
{
    return static_cast<CFTypeID>(TypeID::boolean);
}

Boolean CFBooleanGetValue(CFBooleanRef ref)
{
    return expectObject<Truth>(ref).value;
}

CFTypeID CFArrayGetTypeID()
{
    return static_cast<CFTypeID>(TypeID::array);
}

CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef, CFIndex, const CFArrayCallBacks*)
{
    return create<CFMutableArrayRef, Array>();
}

void CFArrayAppendValue(CFMutableArrayRef ref, CFTypeRef value)
{
    expectObject<Array>(ref).values.push_back(Value::retain(value));
}

CFIndex CFArrayGetCount(CFArrayRef ref)
{
    return static_cast<CFIndex>(expectObject<Array>(ref).values.size());
}

CFTypeRef CFArrayGetValueAtIndex(CFArrayRef ref, CFIndex index)
{
    return expectObject<Array>(ref).values.at(static_cast<std::size_t>(index)).get();
}

CFTypeID CFDictionaryGetTypeID()
{
    return static_cast<CFTypeID>(TypeID::dictionary);
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values,
    CFIndex count, const CFDictionaryKeyCallBacks*, const CFDictionaryValueCallBacks*)
{
    const auto ref = create<CFDictionaryRef, Dictionary>();
    for (CFIndex i = 0; i < count; ++i)
        expectObject<Dictionary>(ref).entries.emplace_back(
            Value::retain(keys[i]), Value::retain(values[i]));
    return ref;
}

CFTypeRef CFDictionaryGetValue(CFDictionaryRef ref, CFTypeRef key)
{
    for (const auto& [name, value] : expectObject<Dictionary>(ref).entries) {
        if (CFEqual(name.get(), key))
            return value.get();
    }
    return nullptr;
}

bool CGRectMakeWithDictionaryRepresentation(CFDictionaryRef ref, CGRect* rect)
{
    const auto read = [ref](const char* key, double& value) {
        const auto entry = CFDictionaryGetValue(ref, CFSTR(key));
        auto* number = objectAs<Number>(entry);
        return number
            && CFNumberGetValue(static_cast<CFNumberRef>(entry), kCFNumberDoubleType, &value);
    };
    return read("X", rect->origin.x) && read("Y", rect->origin.y) && read("Width", rect->size.width)
        && read("Height", rect->size.height);
}

CFStringRef CFUUIDCreateString(CFAllocatorRef, CFUUIDRef ref)
{
    return createString(expectObject<UUID>(ref).text);
}
