#include <cmath>
#include <cstring>
#include <map>
#include <variant>

#include "Tests/MacSystem/Support/Objects.h"
#include "Tests/MacSystem/Support/Strings.h"
#include "Tests/MacSystem/Support/Values.h"

namespace quorvel::test {

namespace {

using Number = std::variant<std::int64_t, double>;
using Array = std::vector<Value>;
using Dictionary = std::vector<std::pair<Value, Value>>;

template <typename Ref> Ref constant(Object object)
{
    return static_cast<Ref>(Heap::shared().addConstant(std::move(object)));
}

/// False if the number does not fit. No test has a fraction beyond this range.
template <typename Integer> bool store(const Number& number, void* to)
{
    Integer result{};
    bool isExact = false;
    if (const auto* whole = std::get_if<std::int64_t>(&number)) {
        result = static_cast<Integer>(*whole); // the low bits
        isExact = result == *whole;
    } else if (const double value = std::get<double>(number); std::abs(value) < 0x1p31) {
        result = static_cast<Integer>(value);
        isExact = static_cast<double>(result) == value;
    }
    std::memcpy(to, &result, sizeof result);
    return isExact;
}

Value makeNumber(Number value)
{
    const auto name = std::visit([](auto number) { return std::to_string(number); }, value);
    return Value::adopt(create<CFTypeRef>(TypeID::number, "number " + name, value));
}

}

Value text(std::string_view utf8)
{
    return Value::adopt(createString(utf8));
}

Value utf16(std::u16string units)
{
    return Value::adopt(Heap::shared().add(textObject(std::move(units))));
}

Value number(std::int64_t value)
{
    return makeNumber(value);
}

Value real(double value)
{
    return makeNumber(value);
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
    const auto name = "array of " + std::to_string(values.size());
    return Value::adopt(create<CFTypeRef>(TypeID::array, name, std::move(values)));
}

Value dictionary(const std::vector<std::pair<std::string, Value>>& entries)
{
    Dictionary content;
    for (const auto& [name, value] : entries) {
        if (value)
            content.emplace_back(text(name), value);
    }
    return Value::adopt(create<CFTypeRef>(TypeID::dictionary, "dictionary", std::move(content)));
}

Value rectangle(double x, double y, double width, double height)
{
    return dictionary(
        {{"X", real(x)}, {"Y", real(y)}, {"Width", real(width)}, {"Height", real(height)}});
}

Value uuid(std::string_view value)
{
    return Value::adopt(create<CFTypeRef>(TypeID::uuid, "uuid", std::string{value}));
}

}

using namespace quorvel::test;

const CFArrayCallBacks kCFTypeArrayCallBacks{};
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks{};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks{};
const CFBooleanRef kCFBooleanTrue = constant<CFBooleanRef>({TypeID::boolean, "true", true});
const CFBooleanRef kCFBooleanFalse = constant<CFBooleanRef>({TypeID::boolean, "false", false});
const CFNullRef kCFNull = constant<CFNullRef>({TypeID::null, "null object", {}});
const CFRunLoopMode kCFRunLoopCommonModes = CFSTR("kCFRunLoopCommonModes");

CFStringRef simulatedConstantString(const char* text)
{
    static std::map<std::string, CFStringRef, std::less<>> constants;
    auto& known = constants[text];
    if (!known)
        known = constant<CFStringRef>(textObject(decode(text).value()));
    return known;
}

CFTypeID CFNumberGetTypeID()
{
    return static_cast<CFTypeID>(TypeID::number);
}

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void* value)
{
    return give<CFNumberRef>(type == kCFNumberDoubleType
            ? real(*static_cast<const double*>(value))
            : number(*static_cast<const std::int64_t*>(value)));
}

Boolean CFNumberGetValue(CFNumberRef ref, CFNumberType type, void* out)
{
    const auto& value = contentOf<Number>(ref);
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
    return contentOf<bool>(ref);
}

CFTypeID CFArrayGetTypeID()
{
    return static_cast<CFTypeID>(TypeID::array);
}

CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef, CFIndex, const CFArrayCallBacks*)
{
    return create<CFMutableArrayRef>(TypeID::array, "array", Array{});
}

void CFArrayAppendValue(CFMutableArrayRef ref, CFTypeRef value)
{
    contentOf<Array>(ref).push_back(Value::retain(value));
}

CFIndex CFArrayGetCount(CFArrayRef ref)
{
    return static_cast<CFIndex>(contentOf<Array>(ref).size());
}

CFTypeRef CFArrayGetValueAtIndex(CFArrayRef ref, CFIndex index)
{
    return contentOf<Array>(ref).at(static_cast<std::size_t>(index)).get();
}

CFTypeID CFDictionaryGetTypeID()
{
    return static_cast<CFTypeID>(TypeID::dictionary);
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values,
    CFIndex count, const CFDictionaryKeyCallBacks*, const CFDictionaryValueCallBacks*)
{
    Dictionary content;
    for (CFIndex i = 0; i < count; ++i)
        content.emplace_back(Value::retain(keys[i]), Value::retain(values[i]));
    return create<CFDictionaryRef>(TypeID::dictionary, "dictionary", std::move(content));
}

CFTypeRef CFDictionaryGetValue(CFDictionaryRef ref, CFTypeRef key)
{
    for (const auto& [name, value] : contentOf<Dictionary>(ref)) {
        if (CFEqual(name.get(), key))
            return value.get();
    }
    return nullptr;
}

bool CGRectMakeWithDictionaryRepresentation(CFDictionaryRef ref, CGRect* rect)
{
    const auto read = [ref](const char* key, double& value) {
        const auto entry = CFDictionaryGetValue(ref, CFSTR(key));
        return contentIf<Number>(entry)
            && CFNumberGetValue(static_cast<CFNumberRef>(entry), kCFNumberDoubleType, &value);
    };
    return read("X", rect->origin.x) && read("Y", rect->origin.y) && read("Width", rect->size.width)
        && read("Height", rect->size.height);
}

CFStringRef CFUUIDCreateString(CFAllocatorRef, CFUUIDRef ref)
{
    return createString(contentOf<std::string>(ref));
}
