#include <algorithm>
#include <cstring>

#include "Tests/MacSystem/Support/SimulatedMac.h"

namespace quorvel::test {

namespace {

struct Structure {
    AXValueType kind;
    CGRect bytes{};
};

std::size_t sizeOf(AXValueType type)
{
    return type == kAXValueTypeCGRect ? sizeof(CGRect)
        : type == kAXValueTypeAXError ? sizeof(::AXError)
                                      : sizeof(CGPoint);
}

struct Source {
    CFRunLoopRef runLoop = nullptr; ///< not null while it is in one
};

FakeAccessibility& accessibility()
{
    return SimulatedMac::current().desktop().accessibility();
}

/// Each reference is an object of its own with its own timeout; references to the same thing are
/// equal.
AXUIElementRef createElement(const AXElement& element)
{
    accessibility().setMessagingTimeout(element, SimulatedMac::current().defaultTimeout);
    const auto name = "element " + std::to_string(element.token);
    return create<AXUIElementRef>(TypeID::element, name, element);
}

::AXError result(AXError error)
{
    return static_cast<::AXError>(error);
}

/// The system's observer over one of the fake desktop's.
struct Observer {
    struct Registration {
        AXElement element;
        std::string notification;
        void* context;
    };

    AXObserverCallback callback;
    std::shared_ptr<AXObserver> fake = {};
    Value source = Value::adopt(create<CFTypeRef>(TypeID::runLoopSource, "source", Source{}));
    std::vector<Registration> registrations = {};
};

void deliver(AXObserverRef ref, const AXElement& about, std::string_view notification)
{
    const auto& observer = contentOf<Observer>(ref);
    const auto runLoop = contentOf<Source>(observer.source.get()).runLoop;
    if (!runLoop)
        return; // nobody serves the source
    if (runLoop != CFRunLoopGetCurrent())
        Heap::shared().note("a notification came on another thread than its source's");
    const auto found = std::ranges::find(
        observer.registrations, notification, &Observer::Registration::notification);
    if (found == observer.registrations.end())
        return;
    const auto element = Value::adopt(createElement(about));
    const auto name = text(notification);
    observer.callback(ref, static_cast<AXUIElementRef>(element.get()),
        static_cast<CFStringRef>(name.get()), found->context);
}

struct ValueMaker {
    Value operator()(std::monostate) const { return null(); }
    Value operator()(bool value) const { return truth(value); }
    Value operator()(double value) const
    {
        const auto whole = static_cast<std::int32_t>(std::clamp(value, -1e9, 1e9));
        return whole == value ? number(whole) : real(value);
    }
    Value operator()(const std::string& value) const { return text(value); }
    Value operator()(const Point& value) const
    {
        return axValue(kAXValueTypeCGPoint, {{value.x, value.y}, {}});
    }
    Value operator()(const Size& value) const
    {
        return axValue(kAXValueTypeCGSize, {{value.width, value.height}, {}});
    }
    Value operator()(const AXElement& value) const { return Value::adopt(createElement(value)); }
    Value operator()(const std::vector<AXElement>& elements) const
    {
        std::vector<Value> values;
        for (const auto& element : elements)
            values.push_back((*this)(element));
        return array(std::move(values));
    }
};

/// What an application makes of a value that was set.
AXValue received(CFTypeRef value)
{
    if (value == kCFBooleanTrue || value == kCFBooleanFalse)
        return value == kCFBooleanTrue;
    if (CFGetTypeID(value) == CFStringGetTypeID())
        return utf8(static_cast<CFStringRef>(value));
    if (CFGetTypeID(value) == CFNumberGetTypeID()) {
        double number = 0;
        CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberDoubleType, &number);
        return number;
    }
    if (const auto* element = contentIf<AXElement>(value))
        return *element;
    const auto* structure = contentIf<Structure>(value);
    if (!structure)
        return {};
    const auto [x, y] = structure->bytes.origin;
    return structure->kind == kAXValueTypeCGPoint ? AXValue{Point{x, y}} : AXValue{Size{x, y}};
}

}

Value axValue(AXValueType type, const CGRect& bytes)
{
    return Value::adopt(AXValueCreate(type, &bytes));
}

AXUIElementRef SimulatedMac::createWindowElement(WindowID id)
{
    return createElement(accessibility().windowElement(id));
}

CFRunLoopRef SimulatedMac::runLoop()
{
    const auto label = m_desktop.dispatch().currentLabel();
    auto& runLoop = m_runLoops[label];
    if (!runLoop)
        runLoop = Value::adopt(create<CFTypeRef>(TypeID::runLoop, "run loop of " + label, {}));
    return static_cast<CFRunLoopRef>(const_cast<void*>(runLoop.get()));
}

}

using namespace quorvel::test;
using quorvel::raw;

const CFStringRef kAXTrustedCheckOptionPrompt = CFSTR("AXTrustedCheckOptionPrompt");

CFRunLoopRef CFRunLoopGetCurrent()
{
    return SimulatedMac::current().runLoop();
}

void CFRunLoopAddSource(CFRunLoopRef runLoop, CFRunLoopSourceRef source, CFRunLoopMode)
{
    contentOf<Source>(source).runLoop = runLoop;
}

void CFRunLoopRemoveSource(CFRunLoopRef runLoop, CFRunLoopSourceRef ref, CFRunLoopMode)
{
    auto& source = contentOf<Source>(ref);
    if (source.runLoop != runLoop)
        Heap::shared().note("a source was taken from a run loop that has it not");
    source.runLoop = nullptr;
}

CFTypeID AXValueGetTypeID()
{
    return static_cast<CFTypeID>(TypeID::axValue);
}

AXValueRef AXValueCreate(AXValueType type, const void* value)
{
    Structure structure{type};
    std::memcpy(&structure.bytes, value, sizeOf(type));
    return create<AXValueRef>(TypeID::axValue, "structure", structure);
}

Boolean AXValueGetValue(AXValueRef ref, AXValueType type, void* value)
{
    const auto& structure = contentOf<Structure>(ref);
    if (structure.kind != type)
        return false;
    std::memcpy(value, &structure.bytes, sizeOf(type));
    return true;
}

Boolean AXIsProcessTrusted()
{
    return accessibility().isTrusted();
}

Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options)
{
    if (CFDictionaryGetValue(options, kAXTrustedCheckOptionPrompt) == kCFBooleanTrue)
        accessibility().promptForTrust();
    return AXIsProcessTrusted();
}

CFTypeID AXUIElementGetTypeID()
{
    return static_cast<CFTypeID>(TypeID::element);
}

AXUIElementRef AXUIElementCreateSystemWide()
{
    return createElement({});
}

AXUIElementRef AXUIElementCreateApplication(pid_t pid)
{
    return createElement(accessibility().application(quorvel::ProcessID{pid}));
}

AXError AXUIElementSetMessagingTimeout(AXUIElementRef ref, float seconds)
{
    const auto& element = contentOf<quorvel::AXElement>(ref);
    if (element.token == 0) // stands for the whole system
        SimulatedMac::current().defaultTimeout = seconds;
    else
        accessibility().setMessagingTimeout(element, seconds);
    return kAXErrorSuccess;
}

AXError AXUIElementCopyAttributeValue(AXUIElementRef ref, CFStringRef attribute, CFTypeRef* value)
{
    const auto name = utf8(attribute);
    const auto reply = accessibility().copyAttribute(contentOf<quorvel::AXElement>(ref), name);
    if (reply.error != quorvel::AXError::success)
        return result(reply.error);
    const auto* answer = SimulatedMac::current().answerFor(name);
    *value = give<CFTypeRef>(answer ? *answer : std::visit(ValueMaker{}, reply.value));
    return kAXErrorSuccess;
}

AXError AXUIElementIsAttributeSettable(AXUIElementRef ref, CFStringRef attribute, Boolean* settable)
{
    const auto reply
        = accessibility().isAttributeSettable(contentOf<quorvel::AXElement>(ref), utf8(attribute));
    if (const auto* answer = reply.get<bool>())
        *settable = *answer;
    return result(reply.error);
}

AXError AXUIElementSetAttributeValue(AXUIElementRef ref, CFStringRef attribute, CFTypeRef value)
{
    return result(accessibility().setAttribute(
        contentOf<quorvel::AXElement>(ref), utf8(attribute), received(value)));
}

AXError AXUIElementPerformAction(AXUIElementRef ref, CFStringRef action)
{
    return result(accessibility().performAction(contentOf<quorvel::AXElement>(ref), utf8(action)));
}

AXError simulatedGetWindow(AXUIElementRef ref, CGWindowID* number)
{
    const auto resolve = accessibility().windowIDResolver();
    quorvel::WindowID window{};
    if (!resolve)
        return kAXErrorFailure;
    const auto error = resolve(contentOf<quorvel::AXElement>(ref), window);
    if (error == quorvel::AXError::success)
        *number = raw(window);
    return result(error);
}

AXError AXObserverCreate(pid_t pid, AXObserverCallback callback, AXObserverRef* out)
{
    auto* thread = SimulatedMac::current().desktop().dispatch().thread();
    if (!thread) {
        Heap::shared().note("an observer was made away from the run loops");
        return kAXErrorFailure;
    }
    const auto observer
        = create<AXObserverRef>(TypeID::observer, "observer", Observer{.callback = callback});
    auto [error, fake] = accessibility().createObserver(quorvel::ProcessID{pid}, *thread,
        [observer](const auto& about, auto what) { deliver(observer, about, what); });
    contentOf<Observer>(observer).fake = std::move(fake);
    if (error == quorvel::AXError::success)
        *out = observer;
    else
        CFRelease(observer);
    return result(error);
}

AXError AXObserverAddNotification(
    AXObserverRef ref, AXUIElementRef element, CFStringRef notification, void* context)
{
    auto& observer = contentOf<Observer>(ref);
    const auto& about = contentOf<quorvel::AXElement>(element);
    const auto error = observer.fake->addNotification(about, utf8(notification));
    if (error == quorvel::AXError::success) {
        observer.registrations.push_back({about, utf8(notification), context});
        SimulatedMac::current().lastRegistration = {observer.callback, context};
    }
    return result(error);
}

AXError AXObserverRemoveNotification(
    AXObserverRef ref, AXUIElementRef element, CFStringRef notification)
{
    auto& observer = contentOf<Observer>(ref);
    const auto& about = contentOf<quorvel::AXElement>(element);
    std::erase_if(observer.registrations, [&](const auto& entry) {
        return entry.element == about && entry.notification == utf8(notification);
    });
    return result(observer.fake->removeNotification(about, utf8(notification)));
}

CFRunLoopSourceRef AXObserverGetRunLoopSource(AXObserverRef ref)
{
    return static_cast<CFRunLoopSourceRef>(
        const_cast<void*>(contentOf<Observer>(ref).source.get()));
}
