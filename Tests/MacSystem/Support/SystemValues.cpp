// Values of the real CoreFoundation, for tests that run on a Mac.

#include "Hosts/MacOS/System/CFValues.h"
#include "Tests/MacSystem/Support/LeakCheck.h"
#include "Tests/MacSystem/Support/Values.h"

namespace quorvel::test {

// Nobody counts the references of the real objects.
LeakCheck::~LeakCheck() = default;

Value text(std::string_view utf8)
{
    return Value::retain(makeString(utf8).get());
}

Value utf16(std::u16string units)
{
    return Value::adopt(CFStringCreateWithCharacters(kCFAllocatorDefault,
        reinterpret_cast<const UniChar*>(units.data()), static_cast<CFIndex>(units.size())));
}

Value number(std::int64_t value)
{
    return Value::adopt(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &value));
}

Value real(double value)
{
    return Value::adopt(CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &value));
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
    auto made = CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
    for (const auto& value : values)
        CFArrayAppendValue(made, value.get());
    return Value::adopt(made);
}

Value dictionary(const std::vector<std::pair<std::string, Value>>& entries)
{
    auto made = CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    for (const auto& [name, value] : entries) {
        if (value)
            CFDictionarySetValue(made, text(name).get(), value.get());
    }
    return Value::adopt(made);
}

Value rectangle(double x, double y, double width, double height)
{
    return Value::adopt(CGRectCreateDictionaryRepresentation(CGRectMake(x, y, width, height)));
}

}
