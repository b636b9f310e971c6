#include "Quorvel/Skylight/AXCalls.h"

#include <string>

#include "Quorvel/Skylight/LateRequests.h"

namespace quorvel {

AXCalls::AXCalls(Accessibility& accessibility, LateRequests* late)
    : m_accessibility(accessibility)
    , m_late(late)
    , m_axGetWindow(accessibility.windowIDResolver())
{
}

AXCalls::Scan::Scan(AXCalls& calls) : m_calls(calls)
{
    ++m_calls.m_scanDepth;
}

AXCalls::Scan::~Scan()
{
    if (--m_calls.m_scanDepth == 0) {
        m_calls.m_hungInScan.clear();
        m_calls.m_lateInScan.clear();
    }
}

void AXCalls::setMessagingTimeout(const AXElement& element) const
{
    m_accessibility.setMessagingTimeout(element, axMessagingTimeoutSeconds);
}

AXElement AXCalls::application(ProcessID pid) const
{
    auto element = m_accessibility.application(pid);
    setMessagingTimeout(element);
    return element;
}

AXReply AXCalls::copyAttribute(ProcessID pid, const AXElement& element, std::string_view attribute)
{
    AXReply reply;
    reply.error = bounded(pid, [&] {
        reply = m_accessibility.copyAttribute(element, attribute);
        return reply.error;
    });
    return reply;
}

bool AXCalls::isSettable(ProcessID pid, const AXElement& element, std::string_view attribute)
{
    AXReply reply;
    reply.error = bounded(pid, [&] {
        reply = m_accessibility.isAttributeSettable(element, attribute);
        return reply.error;
    });
    auto* isSettable = reply.get<bool>();
    return isSettable && *isSettable;
}

AXError AXCalls::setAttribute(
    ProcessID pid, const AXElement& element, std::string_view attribute, const AXValue& value)
{
    if (mustWait(pid))
        return makeLater(
            pid, [&accessibility = m_accessibility, element, name = std::string{attribute}, value] {
                accessibility.setAttribute(element, name, value);
            });
    return noteLateness(pid, m_accessibility.setAttribute(element, attribute, value));
}

AXError AXCalls::performAction(ProcessID pid, const AXElement& element, std::string_view action)
{
    if (mustWait(pid))
        return makeLater(
            pid, [&accessibility = m_accessibility, element, name = std::string{action}] {
                accessibility.performAction(element, name);
            });
    return noteLateness(pid, m_accessibility.performAction(element, action));
}

AXError AXCalls::addNotification(
    ProcessID pid, AXObserver& observer, const AXElement& element, std::string_view notification)
{
    return bounded(pid, [&] { return observer.addNotification(element, notification); });
}

bool AXCalls::mustWait(ProcessID pid) const
{
    return m_hungInScan.contains(pid)
        || (m_late && (m_lateInScan.contains(pid) || m_late->isWaiting(pid)));
}

AXError AXCalls::makeLater(ProcessID pid, Work request)
{
    if (m_late)
        m_late->add(pid, std::move(request));
    return AXError::cannotComplete;
}

AXError AXCalls::noteLateness(ProcessID pid, AXError error)
{
    if (error == AXError::cannotComplete && m_scanDepth > 0)
        m_lateInScan.insert(pid);
    return error;
}

void AXCalls::noteTimeOut(ProcessID pid, AXError error)
{
    if (error != AXError::cannotComplete)
        return;
    if (m_scanDepth > 0)
        m_hungInScan.insert(pid);
    if (onTimeOut)
        onTimeOut(pid);
}

std::optional<std::vector<AXElement>> AXCalls::windows(ProcessID pid)
{
    auto elements = read<std::vector<AXElement>>(pid, application(pid), ax::windows);
    if (elements) {
        for (auto& element : *elements)
            setMessagingTimeout(element);
    }
    return elements;
}

std::optional<AXElement> AXCalls::window(ProcessID pid, const AXElement& application, WindowID id)
{
    Scan hungOnlyOnce(*this);
    auto elements = read<std::vector<AXElement>>(pid, application, ax::windows);
    if (!elements)
        return {};
    for (auto& element : *elements) {
        setMessagingTimeout(element);
        if (windowID(pid, element) == id)
            return element;
    }
    return {};
}

std::optional<WindowID> AXCalls::windowID(ProcessID pid, const AXElement& element)
{
    if (m_hungInScan.contains(pid))
        return {};
    if (WindowID id{}; m_axGetWindow && m_axGetWindow(element, id) == AXError::success)
        return id;
    auto number = read<double>(pid, element, ax::windowNumber);
    const bool isOne
        = number && *number >= 0 && *number <= 4294967295.0; // not so if it is no number
    if (!isOne)
        return {};
    return WindowID{static_cast<std::uint32_t>(*number)};
}

}
