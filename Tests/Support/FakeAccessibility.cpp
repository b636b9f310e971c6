#include "Tests/Support/FakeAccessibility.h"

#include <algorithm>
#include <cmath>

#include "Tests/Support/Contract.h"
#include "Tests/Support/FakeDesktop.h"
#include "Tests/Support/FakeObserver.h"

namespace quorvel::test {

// A token says what the element stands for, and whose it is.
enum class Part : std::uint64_t { application = 1, window = 2, closeButton = 3, zoomButton = 4 };

namespace {

constexpr int kPartShift = 60;

/// The timeout belongs to a reference, not to the thing: a fresh copy has the default again.
struct Reference final : AXNative {
    mutable float timeout = FakeAccessibility::kDefaultTimeout;
    bool equals(const AXNative&) const override { return true; }
};

AXElement element(Part part, std::uint64_t number)
{
    return {static_cast<std::uint64_t>(part) << kPartShift | number, std::make_shared<Reference>()};
}

AXElement elementOf(WindowID id)
{
    return element(Part::window, raw(id));
}

float timeoutOf(const AXElement& element)
{
    auto* reference = dynamic_cast<const Reference*>(element.native.get());
    return reference ? reference->timeout : FakeAccessibility::kDefaultTimeout;
}

AXReply answer(AXValue value)
{
    return {AXError::success, std::move(value)};
}

AXReply answer(const std::optional<std::string>& text)
{
    return text ? answer(AXValue{*text}) : AXReply{AXError::noValue, {}};
}

AXReply answer(const std::optional<WindowID>& window)
{
    return window ? answer(AXValue{elementOf(*window)}) : AXReply{AXError::noValue, {}};
}

bool isSwitch(std::string_view attribute)
{
    return attribute == ax::maximized || attribute == ax::fullScreen || attribute == ax::keptAbove
        || attribute == ax::onEverySpace;
}

AXReply oneOf(const std::map<std::string_view, AXReply>& answers, std::string_view attribute)
{
    auto found = answers.find(attribute);
    return found == answers.end() ? AXReply{AXError::attributeUnsupported, {}} : found->second;
}

/// What it says instead of the truth, if it does.
template <typename Faults>
std::optional<AXReply> lie(const Faults& faults, std::string_view attribute)
{
    std::string name{attribute};
    if (faults.missingAttributes.contains(name))
        return AXReply{AXError::attributeUnsupported, {}};
    auto wrong = faults.wrongAttributes.find(name);
    return wrong == faults.wrongAttributes.end() ? std::nullopt
                                                 : std::optional{answer(wrong->second)};
}

}

/// What an element stands for; the application is null once its process is gone.
struct FakeAccessibility::Target {
    Part part{};
    ProcessID pid{};
    std::optional<WindowID> window;
    FakeApplication* application = nullptr;
    FakeWindow* windowState = nullptr;
};

FakeAccessibility::Target FakeAccessibility::target(const AXElement& element) const
{
    auto& model = m_desktop.model();
    Target target;
    target.part = static_cast<Part>(element.token >> kPartShift);
    auto number = static_cast<std::uint32_t>(element.token);
    if (target.part == Part::application) {
        target.pid = static_cast<ProcessID>(number);
    } else {
        target.window = WindowID{number};
        target.windowState = model.window(*target.window);
        target.pid = target.windowState ? target.windowState->pid : ProcessID{};
    }
    target.application = model.application(target.pid);
    return target;
}

AXElement FakeAccessibility::application(ProcessID pid) const
{
    return element(Part::application, static_cast<std::uint32_t>(raw(pid)));
}

AXElement FakeAccessibility::windowElement(WindowID id) const
{
    return elementOf(id);
}

void FakeAccessibility::setMessagingTimeout(const AXElement& element, float seconds)
{
    if (auto* reference = dynamic_cast<const Reference*>(element.native.get()))
        reference->timeout = seconds;
}

AXError FakeAccessibility::send(const AXElement& element, AXMessage message)
{
    auto to = target(element);
    message.pid = to.pid;
    message.window = to.window;
    message.timeout = timeoutOf(element);
    message.at = m_desktop.dispatch().now();
    message.thread = m_desktop.dispatch().currentLabel();
    message.result = fault(to, message.timeout);
    m_messages.push_back(message);
    return message.result;
}

AXError FakeAccessibility::fault(const Target& to, float timeout)
{
    if (!m_isTrusted)
        return AXError::apiDisabled;
    if (!to.application || to.application->faults.isDead || (to.window && !to.windowState))
        return AXError::invalidElement;
    auto& faults = to.application->faults;
    if (faults.messagesUntilHang && --*faults.messagesUntilHang < 0) {
        faults.messagesUntilHang.reset();
        faults.isHung = true;
    }
    if (faults.isHung) {
        m_desktop.dispatch().spend(std::chrono::microseconds{std::lround(timeout * 1e6F)});
        return AXError::cannotComplete;
    }
    if (to.application->answersFrom > m_desktop.dispatch().now())
        return AXError::cannotComplete;
    if (faults.failingMessages > 0) {
        --faults.failingMessages;
        return AXError::cannotComplete;
    }
    return AXError::success;
}

std::optional<AXError> FakeAccessibility::lateAnswer(const Target& to, const AXElement& element)
{
    if (!to.application->faults.answersRequestsLate)
        return std::nullopt;
    m_desktop.dispatch().spend(std::chrono::microseconds{std::lround(timeoutOf(element) * 1e6F)});
    return AXError::cannotComplete;
}

AXReply FakeAccessibility::copyAttribute(const AXElement& element, std::string_view attribute)
{
    AXMessage message{.kind = AXMessage::Kind::copy, .name = std::string{attribute}};
    if (auto error = send(element, message); error != AXError::success)
        return {error, {}};
    auto to = target(element);
    if (to.part == Part::application)
        return lie(to.application->faults, attribute)
            .value_or(applicationAttribute(*to.application, attribute));
    if (to.part == Part::window)
        return lie(to.windowState->faults, attribute)
            .value_or(windowAttribute(*to.windowState, attribute));
    if (auto& zoom = to.windowState->zoomButton; to.part == Part::zoomButton && zoom)
        return oneOf({{ax::enabled, answer(AXValue{zoom->isEnabled})},
                         {ax::subrole, answer(AXValue{zoom->subrole})}},
            attribute);
    return {AXError::attributeUnsupported, {}};
}

AXReply FakeAccessibility::isAttributeSettable(const AXElement& element, std::string_view attribute)
{
    AXMessage message{.kind = AXMessage::Kind::copy, .name = std::string{attribute}};
    if (auto error = send(element, message); error != AXError::success)
        return {error, {}};
    auto to = target(element);
    if (to.part != Part::window)
        return {AXError::attributeUnsupported, {}};
    auto& window = *to.windowState;
    if (isSwitch(attribute) && !window.switches.contains(attribute))
        return {AXError::attributeUnsupported, {}};
    bool isKept = window.faults.refusedRequests.contains(message.name);
    return answer(AXValue{!isKept
        && (isSwitch(attribute) || attribute == ax::position || attribute == ax::size
            || attribute == ax::minimized || attribute == ax::main || attribute == ax::focused)});
}

AXReply FakeAccessibility::applicationAttribute(
    FakeApplication& application, std::string_view attribute) const
{
    if (attribute == ax::windows) {
        std::vector<AXElement> listed;
        for (auto* window : m_desktop.model().windowsOf(application.info.pid)) {
            if (isListed(*window))
                listed.push_back(elementOf(window->id));
        }
        return answer(AXValue{std::move(listed)});
    }
    return oneOf(
        {{ax::focusedWindow, answer(application.focusedWindow)},
            {ax::mainWindow, answer(application.mainWindow)},
            {ax::frontmost, answer(AXValue{m_desktop.model().frontmost == application.info.pid})},
            {ax::title, answer(AXValue{application.info.localizedName})},
            {ax::role, answer(AXValue{std::string{"AXApplication"}})}},
        attribute);
}

bool FakeAccessibility::isListed(const FakeWindow& window) const
{
    return window.faults.isListed && window.inAccessibilityFrom <= m_desktop.dispatch().now();
}

AXReply FakeAccessibility::windowAttribute(
    const FakeWindow& window, std::string_view attribute) const
{
    auto& application = *m_desktop.model().application(window.pid);
    if (attribute == ax::windowNumber && !window.faults.hasWindowNumber)
        return {AXError::attributeUnsupported, {}};
    if (isSwitch(attribute)) {
        auto found = window.switches.find(attribute);
        return found == window.switches.end() ? AXReply{AXError::attributeUnsupported, {}}
                                              : answer(AXValue{found->second});
    }
    if (attribute == ax::zoomButton && !window.zoomButton)
        return {AXError::noValue, {}};
    return oneOf(
        {{ax::title, answer(AXValue{window.title})}, {ax::role, answer(window.role)},
            {ax::subrole, answer(window.subrole)}, {ax::modal, answer(AXValue{window.isModal})},
            {ax::minimized, answer(AXValue{window.isMinimized})},
            {ax::main, answer(AXValue{application.mainWindow == window.id})},
            {ax::focused, answer(AXValue{application.focusedWindow == window.id})},
            {ax::position, answer(AXValue{window.frame.origin()})},
            {ax::size, answer(AXValue{window.frame.size()})},
            {ax::closeButton, answer(AXValue{element(Part::closeButton, raw(window.id))})},
            {ax::zoomButton, answer(AXValue{element(Part::zoomButton, raw(window.id))})},
            {ax::windowNumber, answer(AXValue{static_cast<double>(raw(window.id))})}},
        attribute);
}

AXError FakeAccessibility::setAttribute(
    const AXElement& element, std::string_view attribute, const AXValue& value)
{
    AXMessage message{.kind = AXMessage::Kind::set, .name = std::string{attribute}, .value = value};
    if (auto error = send(element, message); error != AXError::success)
        return error;
    auto to = target(element);
    const auto late = lateAnswer(to, element);
    auto error = AXError::attributeUnsupported;
    if (to.part == Part::application)
        error = setApplicationAttribute(*to.application, attribute, value);
    else if (to.part == Part::window)
        error = setWindowAttribute(*to.windowState, attribute, value);
    return late.value_or(error);
}

AXError FakeAccessibility::setApplicationAttribute(
    FakeApplication& application, std::string_view attribute, const AXValue& value)
{
    if (application.faults.refusedRequests.contains(std::string{attribute}))
        return AXError::failure;
    if (attribute == ax::frontmost) {
        auto* flag = std::get_if<bool>(&value);
        if (flag && *flag)
            m_desktop.activate(application.info.pid);
        return flag ? AXError::success : AXError::illegalArgument;
    }
    if (attribute != ax::focusedWindow && attribute != ax::mainWindow)
        return AXError::attributeUnsupported;
    auto* window = std::get_if<AXElement>(&value);
    if (!window || !target(*window).windowState)
        return AXError::illegalArgument;
    m_desktop.focus(*target(*window).window);
    return AXError::success;
}

AXError FakeAccessibility::setWindowAttribute(
    FakeWindow& window, std::string_view attribute, const AXValue& value)
{
    std::string name{attribute};
    if (window.faults.refusedRequests.contains(name))
        return AXError::failure;
    if (window.faults.ignoredRequests.contains(name))
        return AXError::success;
    if (attribute == ax::position || attribute == ax::size) {
        auto* origin = std::get_if<Point>(&value);
        auto* size = std::get_if<Size>(&value);
        if (attribute == ax::position ? !origin : !size)
            return AXError::illegalArgument;
        m_desktop.place(window.id,
            Rect::from(
                origin ? *origin : window.frame.origin(), size ? *size : window.frame.size()));
        return AXError::success;
    }
    auto* flag = std::get_if<bool>(&value);
    if (!flag)
        return AXError::illegalArgument;
    if (auto found = window.switches.find(attribute); found != window.switches.end()) {
        found->second = *flag;
        if (attribute == ax::onEverySpace)
            m_desktop.setOnEverySpace(window.id, *flag);
    } else if (attribute == ax::minimized)
        *flag ? m_desktop.minimise(window.id) : m_desktop.restore(window.id);
    else if (attribute != ax::main && attribute != ax::focused)
        return AXError::attributeUnsupported;
    else if (*flag)
        m_desktop.focus(window.id);
    return AXError::success;
}

AXError FakeAccessibility::performAction(const AXElement& element, std::string_view action)
{
    AXMessage message{.kind = AXMessage::Kind::action, .name = std::string{action}};
    if (auto error = send(element, message); error != AXError::success)
        return error;
    auto to = target(element);
    if (to.part == Part::application)
        return AXError::actionUnsupported;
    const auto late = lateAnswer(to, element);
    if (to.windowState->faults.refusedRequests.contains(message.name))
        return AXError::failure;
    if (to.windowState->faults.ignoredRequests.contains(message.name))
        return AXError::success;
    if (to.part == Part::window && action == ax::raiseAction)
        m_desktop.focus(*to.window);
    else if (to.part == Part::closeButton && action == ax::pressAction)
        m_desktop.close(*to.window);
    else if (to.part == Part::zoomButton && to.windowState->zoomButton)
        to.windowState->zoomButton->actions.push_back(message.name);
    else
        return AXError::actionUnsupported;
    return late.value_or(AXError::success);
}

// The number is part of the reference, so asking for it reaches no application and costs nothing.
AXError FakeAccessibility::resolve(const AXElement& element, WindowID& id) const
{
    auto to = target(element);
    if (to.part != Part::window || !to.windowState || !to.windowState->faults.hasWindowNumber)
        return AXError::illegalArgument;
    id = *to.window;
    return AXError::success;
}

Accessibility::WindowIDResolver FakeAccessibility::windowIDResolver() const
{
    if (!m_hasResolver)
        return {};
    return [this](const AXElement& element, WindowID& id) { return resolve(element, id); };
}

std::pair<AXError, std::unique_ptr<AXObserver>> FakeAccessibility::createObserver(
    ProcessID pid, RunLoopThread& thread, Callback callback)
{
    if (!m_desktop.dispatch().isOn(thread))
        contractBroken("an observer was made away from its run loop's thread");
    m_observerAttempts.push_back(m_desktop.dispatch().now());
    auto* application = m_desktop.model().application(pid);
    if (!application || !m_isTrusted)
        return {AXError::failure, nullptr};
    if (application->faults.failingObservers > 0) {
        --application->faults.failingObservers;
        return {AXError::cannotComplete, nullptr};
    }
    return {AXError::success,
        std::make_unique<FakeObserver>(m_desktop, pid, thread, std::move(callback))};
}

void FakeAccessibility::notify(ProcessID pid, const AXElement& about, std::string_view notification)
{
    auto* application = m_desktop.model().application(pid);
    std::string name{notification};
    if (!application || application->faults.swallowedNotifications.contains(name))
        return;
    int times = application->faults.duplicatedNotifications.contains(name) ? 2 : 1;
    for (auto* observer : m_observers) {
        for (int i = 0; observer->pid() == pid && i < times; ++i)
            observer->notify(about, this->application(pid), notification);
    }
}

std::vector<AXMessage> FakeAccessibility::messages(ProcessID pid, AXMessage::Kind kind) const
{
    std::vector<AXMessage> found;
    std::ranges::copy_if(m_messages, std::back_inserter(found),
        [&](const AXMessage& message) { return message.pid == pid && message.kind == kind; });
    return found;
}

std::size_t FakeAccessibility::observersOf(ProcessID pid) const
{
    return static_cast<std::size_t>(std::ranges::count(m_observers, pid, &FakeObserver::pid));
}

bool FakeAccessibility::isRegistered(ProcessID pid, std::string_view notification) const
{
    return std::ranges::any_of(m_observers,
        [&](auto* observer) { return observer->isRegistered(application(pid), notification); });
}

bool FakeAccessibility::isRegistered(WindowID id, std::string_view notification) const
{
    return std::ranges::any_of(m_observers,
        [&](auto* observer) { return observer->isRegistered(windowElement(id), notification); });
}

}
