#include "Hosts/MacOS/System/MacAccessibility.h"

#include "Hosts/MacOS/System/AccessibilityElement.h"
#include "Hosts/MacOS/System/CFValues.h"
#include "Hosts/MacOS/System/MacObserver.h"

namespace quorvel {

MacAccessibility::MacAccessibility(const PrivateSymbols& symbols)
    : m_getWindow(symbols.axElementGetWindow)
{
    const auto everything = CFRef<AXUIElementRef>::adopt(AXUIElementCreateSystemWide());
    if (everything)
        AXUIElementSetMessagingTimeout(everything.get(), kDefaultMessagingTimeoutSeconds);
}

bool MacAccessibility::isTrusted() const
{
    return AXIsProcessTrusted() != 0;
}

void MacAccessibility::promptForTrust()
{
    const void* keys[] = {kAXTrustedCheckOptionPrompt};
    const void* values[] = {kCFBooleanTrue};
    const auto options = CFRef<CFDictionaryRef>::adopt(CFDictionaryCreate(kCFAllocatorDefault, keys,
        values, 1, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    AXIsProcessTrustedWithOptions(options.get());
}

AXElement MacAccessibility::application(ProcessID pid) const
{
    return makeElement(CFRef<AXUIElementRef>::adopt(AXUIElementCreateApplication(raw(pid))));
}

void MacAccessibility::setMessagingTimeout(const AXElement& element, float seconds)
{
    if (const AXUIElementRef target = systemElement(element))
        AXUIElementSetMessagingTimeout(target, seconds);
}

AXReply MacAccessibility::copyAttribute(const AXElement& element, std::string_view attribute)
{
    const AXUIElementRef target = systemElement(element);
    const auto name = makeString(attribute);
    if (!target || !name)
        return {AXError::illegalArgument, {}};
    CFRef<CFTypeRef> value;
    const auto error
        = static_cast<AXError>(AXUIElementCopyAttributeValue(target, name.get(), value.out()));
    if (error != AXError::success)
        return {error, {}};
    return {error, makeValue(value.get())};
}

AXReply MacAccessibility::isAttributeSettable(const AXElement& element, std::string_view attribute)
{
    const AXUIElementRef target = systemElement(element);
    const auto name = makeString(attribute);
    if (!target || !name)
        return {AXError::illegalArgument, {}};
    Boolean isSettable = 0;
    const auto error
        = static_cast<AXError>(AXUIElementIsAttributeSettable(target, name.get(), &isSettable));
    return {error, isSettable != 0};
}

AXError MacAccessibility::setAttribute(
    const AXElement& element, std::string_view attribute, const AXValue& value)
{
    const AXUIElementRef target = systemElement(element);
    const auto name = makeString(attribute);
    const auto systemValue = makeSystemValue(value);
    if (!target || !name || !systemValue)
        return AXError::illegalArgument;
    return static_cast<AXError>(
        AXUIElementSetAttributeValue(target, name.get(), systemValue.get()));
}

AXError MacAccessibility::performAction(const AXElement& element, std::string_view action)
{
    const AXUIElementRef target = systemElement(element);
    const auto name = makeString(action);
    if (!target || !name)
        return AXError::illegalArgument;
    return static_cast<AXError>(AXUIElementPerformAction(target, name.get()));
}

Accessibility::WindowIDResolver MacAccessibility::windowIDResolver() const
{
    if (!m_getWindow)
        return {};
    return [getWindow = m_getWindow](const AXElement& element, WindowID& window) {
        const AXUIElementRef target = systemElement(element);
        if (!target)
            return AXError::illegalArgument;
        CGWindowID number = kCGNullWindowID;
        const auto error = static_cast<AXError>(getWindow(target, &number));
        if (error == AXError::success)
            window = WindowID{number};
        return error;
    };
}

std::pair<AXError, std::unique_ptr<AXObserver>> MacAccessibility::createObserver(
    ProcessID pid, RunLoopThread&, Callback callback)
{
    return MacObserver::create(pid, std::move(callback));
}

}
