#include "Hosts/MacOS/System/AccessibilityElement.h"

#include "Hosts/MacOS/System/CFValues.h"

namespace quorvel {

namespace {

template <typename Ref> CFRef<CFTypeRef> asType(const CFRef<Ref>& ref)
{
    return CFRef<CFTypeRef>::retain(ref.get());
}

template <typename Structure>
std::optional<Structure> structureFrom(CFTypeRef value, AXValueType type)
{
    Structure structure{};
    if (CFGetTypeID(value) != AXValueGetTypeID())
        return {};
    if (!AXValueGetValue(static_cast<AXValueRef>(value), type, &structure))
        return {};
    return structure;
}

std::optional<AXElement> elementFrom(CFTypeRef value)
{
    if (!value || CFGetTypeID(value) != AXUIElementGetTypeID())
        return {};
    return makeElement(CFRef<AXUIElementRef>::retain(static_cast<AXUIElementRef>(value)));
}

/// Entries that are no elements are left out, but a list of nothing else is no list of
/// elements: "no windows" and "not readable" mean different things.
AXValue elementsFrom(CFArrayRef array)
{
    std::vector<AXElement> elements;
    forEachIn(array, [&](CFTypeRef entry) {
        if (auto element = elementFrom(entry))
            elements.push_back(std::move(*element));
    });
    if (elements.empty() && CFArrayGetCount(array) > 0)
        return {};
    return elements;
}

struct SystemValueMaker {
    CFRef<CFTypeRef> operator()(std::monostate) const { return {}; }
    CFRef<CFTypeRef> operator()(bool value) const
    {
        return CFRef<CFTypeRef>::retain(value ? kCFBooleanTrue : kCFBooleanFalse);
    }
    CFRef<CFTypeRef> operator()(double value) const { return asType(makeNumber(value)); }
    CFRef<CFTypeRef> operator()(const std::string& value) const
    {
        return asType(makeString(value));
    }
    CFRef<CFTypeRef> operator()(const Point& value) const
    {
        const CGPoint point = CGPointMake(value.x, value.y);
        return CFRef<CFTypeRef>::adopt(AXValueCreate(kAXValueTypeCGPoint, &point));
    }
    CFRef<CFTypeRef> operator()(const Size& value) const
    {
        const CGSize size = CGSizeMake(value.width, value.height);
        return CFRef<CFTypeRef>::adopt(AXValueCreate(kAXValueTypeCGSize, &size));
    }
    CFRef<CFTypeRef> operator()(const AXElement& value) const
    {
        return CFRef<CFTypeRef>::retain(systemElement(value));
    }
    CFRef<CFTypeRef> operator()(const std::vector<AXElement>&) const { return {}; }
};

}

bool MacElement::equals(const AXNative& other) const
{
    const auto* element = dynamic_cast<const MacElement*>(&other);
    return element && CFEqual(ref.get(), element->ref.get());
}

AXElement makeElement(CFRef<AXUIElementRef> ref)
{
    if (!ref)
        return {};
    const std::uint64_t token = CFHash(ref.get());
    return {token, std::make_shared<MacElement>(std::move(ref))};
}

AXUIElementRef systemElement(const AXElement& element)
{
    const auto* native = dynamic_cast<const MacElement*>(element.native.get());
    return native ? native->ref.get() : nullptr;
}

AXValue makeValue(CFTypeRef value)
{
    if (!value)
        return {};
    if (auto text = textFrom(value))
        return *text;
    if (auto truth = truthFrom(value))
        return *truth;
    if (auto number = doubleFrom(value))
        return *number;
    if (auto element = elementFrom(value))
        return *element;
    if (const CFArrayRef array = arrayFrom(value))
        return elementsFrom(array);
    auto point = structureFrom<CGPoint>(value, kAXValueTypeCGPoint);
    if (point && areFinite({point->x, point->y}))
        return Point{point->x, point->y};
    auto size = structureFrom<CGSize>(value, kAXValueTypeCGSize);
    if (size && areFinite({size->width, size->height}))
        return Size{size->width, size->height};
    return {};
}

CFRef<CFTypeRef> makeSystemValue(const AXValue& value)
{
    return std::visit(SystemValueMaker{}, value);
}

}
