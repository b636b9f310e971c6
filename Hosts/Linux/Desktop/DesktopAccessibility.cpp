#include "Hosts/Linux/Desktop/DesktopAccessibility.h"

#include "Hosts/Linux/Desktop/DesktopRequests.h"
#include "Hosts/Linux/Desktop/Elements.h"

namespace quorvel::xdg {

namespace {

constexpr std::string_view kApplicationRole = "AXApplication";
constexpr std::string_view kUnknownRole = "AXUnknown";

AXReply answer(AXValue value)
{
    return {AXError::success, std::move(value)};
}

AXReply answer(std::optional<WindowID> window)
{
    return window ? answer(elementOf(*window)) : AXReply{AXError::noValue, {}};
}

AXReply windowsOf(const DesktopModel& model, ProcessID pid)
{
    std::vector<AXElement> elements;
    for (auto& [id, window] : model.windows) {
        if (window.owner == pid)
            elements.push_back(elementOf(id));
    }
    return answer(std::move(elements));
}

AXReply attributeOf(
    const DesktopModel& model, const ApplicationRecord& application, std::string_view attribute)
{
    if (attribute == ax::windows)
        return windowsOf(model, application.pid);
    if (attribute == ax::focusedWindow || attribute == ax::mainWindow)
        return answer(application.focusedWindow);
    if (attribute == ax::frontmost)
        return answer(model.frontmost == application.pid);
    if (attribute == ax::title)
        return answer(application.name);
    if (attribute == ax::role)
        return answer(std::string{kApplicationRole});
    return {AXError::attributeUnsupported, {}};
}

AXReply subroleOf(const WindowRecord& window)
{
    if (!window.isStandard)
        return {AXError::noValue, {}};
    return answer(std::string{ax::standardWindowSubrole});
}

bool isFocused(const DesktopModel& model, const WindowRecord& window)
{
    auto* application = model.application(window.owner);
    return application && model.frontmost == window.owner
        && application->focusedWindow == window.id;
}

std::optional<WindowSwitch> switchOf(std::string_view attribute)
{
    if (attribute == ax::maximized)
        return WindowSwitch::maximized;
    if (attribute == ax::fullScreen)
        return WindowSwitch::fullScreen;
    if (attribute == ax::keptAbove)
        return WindowSwitch::keptAbove;
    if (attribute == ax::onEverySpace)
        return WindowSwitch::onEverySpace;
    return std::nullopt;
}

AXReply attributeOf(
    const DesktopModel& model, const WindowRecord& window, std::string_view attribute)
{
    if (auto one = switchOf(attribute))
        return answer(window.on.contains(*one));
    if (attribute == ax::title)
        return answer(window.title);
    if (attribute == ax::role)
        return answer(std::string{window.isStandard ? ax::windowRole : kUnknownRole});
    if (attribute == ax::subrole)
        return subroleOf(window);
    if (attribute == ax::modal)
        return answer(window.isModal);
    if (attribute == ax::minimized)
        return answer(window.isMinimized);
    if (attribute == ax::position)
        return answer(window.frame.origin());
    if (attribute == ax::size)
        return answer(window.frame.size());
    if (attribute == ax::windowNumber)
        return answer(static_cast<double>(raw(window.id)));
    if (attribute == ax::closeButton)
        return answer(closeButtonOf(window.id));
    if (attribute == ax::main || attribute == ax::focused)
        return answer(isFocused(model, window));
    return {AXError::attributeUnsupported, {}};
}

}

DesktopAccessibility::DesktopAccessibility(const SharedModel& model, ObserverRegistry& observers,
    DesktopRequests& requests, Dispatch& dispatch)
    : m_model(model)
    , m_observers(observers)
    , m_requests(requests)
    , m_dispatch(dispatch)
    , m_mainThread(std::this_thread::get_id())
    , m_weakRequests(requests)
{
}

AXElement DesktopAccessibility::application(ProcessID pid) const
{
    return elementOf(pid);
}

AXReply DesktopAccessibility::copyAttribute(const AXElement& element, std::string_view attribute)
{
    if (auto pid = applicationIn(element))
        return applicationAttribute(*pid, attribute);
    if (auto window = windowIn(element, ElementKind::window))
        return windowAttribute(*window, attribute);
    return {AXError::attributeUnsupported, {}};
}

AXReply DesktopAccessibility::applicationAttribute(ProcessID pid, std::string_view attribute) const
{
    return m_model.read([&](const DesktopModel& model) -> AXReply {
        auto* application = model.application(pid);
        return application ? attributeOf(model, *application, attribute)
                           : AXReply{AXError::invalidElement, {}};
    });
}

AXReply DesktopAccessibility::windowAttribute(WindowID id, std::string_view attribute) const
{
    return m_model.read([&](const DesktopModel& model) -> AXReply {
        auto* window = model.window(id);
        return window ? attributeOf(model, *window, attribute)
                      : AXReply{AXError::invalidElement, {}};
    });
}

AXReply DesktopAccessibility::isAttributeSettable(
    const AXElement& element, std::string_view attribute)
{
    auto id = windowIn(element, ElementKind::window);
    if (!id)
        return {AXError::attributeUnsupported, {}};
    return m_model.read([&](const DesktopModel& model) -> AXReply {
        auto* window = model.window(*id);
        if (!window)
            return {AXError::invalidElement, {}};
        if (auto one = switchOf(attribute))
            return answer(window->offered.contains(*one));
        if (attribute == ax::size)
            return answer(window->canResize);
        return answer(
            attribute == ax::minimized || attribute == ax::main || attribute == ax::focused);
    });
}

AXError DesktopAccessibility::setAttribute(
    const AXElement& element, std::string_view attribute, const AXValue& value)
{
    if (auto pid = applicationIn(element))
        return setApplicationAttribute(*pid, attribute, value);
    auto window = windowIn(element, ElementKind::window);
    if (!window)
        return AXError::attributeUnsupported;
    if (attribute == ax::minimized)
        return setMinimized(*window, std::get_if<bool>(&value));
    if (attribute == ax::main || attribute == ax::focused)
        return activate(*window, std::get_if<bool>(&value));
    if (attribute == ax::size)
        return setSize(*window, std::get_if<Size>(&value));
    if (auto one = switchOf(attribute))
        return setSwitch(*window, *one, std::get_if<bool>(&value));
    return AXError::attributeUnsupported;
}

AXError DesktopAccessibility::setApplicationAttribute(
    ProcessID pid, std::string_view attribute, const AXValue& value)
{
    if (attribute == ax::focusedWindow || attribute == ax::mainWindow) {
        auto* element = std::get_if<AXElement>(&value);
        auto window = element ? windowIn(*element, ElementKind::window) : std::nullopt;
        constexpr bool wanted = true;
        return window ? activate(*window, &wanted) : AXError::illegalArgument;
    }
    if (attribute != ax::frontmost)
        return AXError::attributeUnsupported;

    auto* isWanted = std::get_if<bool>(&value);
    if (!isWanted)
        return AXError::illegalArgument;
    bool isThere = m_model.read(
        [&](const DesktopModel& model) { return model.application(pid) != nullptr; });
    if (!isThere)
        return AXError::invalidElement;
    if (!*isWanted)
        return AXError::success;
    return request([pid](DesktopRequests& requests) { requests.activateApplication(pid); });
}

AXError DesktopAccessibility::setSwitch(WindowID id, WindowSwitch one, const bool* isWanted)
{
    if (!isWanted)
        return AXError::illegalArgument;
    auto error = m_model.read([&](const DesktopModel& model) {
        auto* window = model.window(id);
        if (!window)
            return AXError::invalidElement;
        return window->offered.contains(one) ? AXError::success : AXError::attributeUnsupported;
    });
    if (error != AXError::success)
        return error;
    return request([id, one, isOn = *isWanted](
                       DesktopRequests& requests) { requests.setSwitch(id, one, isOn); });
}

AXError DesktopAccessibility::setMinimized(WindowID window, const bool* isWanted)
{
    // A window is restored by activating it; the manager knows no other request for that.
    if (!isWanted || !*isWanted) {
        constexpr bool wanted = true;
        return activate(window, isWanted ? &wanted : nullptr);
    }
    if (!exists(window))
        return AXError::invalidElement;
    return request([window](DesktopRequests& requests) { requests.minimize(window); });
}

AXError DesktopAccessibility::activate(WindowID window, const bool* isWanted)
{
    if (!isWanted)
        return AXError::illegalArgument;
    if (!exists(window))
        return AXError::invalidElement;
    if (!*isWanted)
        return AXError::success;
    return request([window](DesktopRequests& requests) { requests.activate(window); });
}

AXError DesktopAccessibility::setSize(WindowID id, const Size* size)
{
    if (!size || size->isEmpty())
        return AXError::illegalArgument;
    auto error = m_model.read([&](const DesktopModel& model) {
        auto* window = model.window(id);
        if (!window)
            return AXError::invalidElement;
        return window->canResize ? AXError::success : AXError::attributeUnsupported;
    });
    if (error != AXError::success)
        return error;
    return request(
        [id, wanted = *size](DesktopRequests& requests) { requests.resize(id, wanted); });
}

AXError DesktopAccessibility::performAction(const AXElement& element, std::string_view action)
{
    constexpr bool wanted = true;
    auto window = windowIn(element, ElementKind::window);
    if (window && action == ax::raiseAction)
        return activate(*window, &wanted);
    auto closing = windowIn(element, ElementKind::closeButton);
    if (!closing || action != ax::pressAction)
        return AXError::actionUnsupported;
    if (!exists(*closing))
        return AXError::invalidElement;
    return request([id = *closing](DesktopRequests& requests) { requests.close(id); });
}

AXError DesktopAccessibility::request(std::function<void(DesktopRequests&)> work)
{
    if (std::this_thread::get_id() == m_mainThread) {
        work(m_requests);
        return AXError::success;
    }
    m_dispatch.main().async([weak = m_weakRequests.reference(), work = std::move(work)] {
        if (auto* requests = weak.get())
            work(*requests);
    });
    return AXError::success;
}

bool DesktopAccessibility::exists(WindowID window) const
{
    return m_model.read([&](const DesktopModel& model) { return model.window(window) != nullptr; });
}

Accessibility::WindowIDResolver DesktopAccessibility::windowIDResolver() const
{
    return [](const AXElement& element, WindowID& number) {
        auto window = windowIn(element, ElementKind::window);
        if (!window)
            return AXError::illegalArgument;
        number = *window;
        return AXError::success;
    };
}

std::pair<AXError, std::unique_ptr<AXObserver>> DesktopAccessibility::createObserver(
    ProcessID pid, RunLoopThread& thread, Callback callback)
{
    bool isThere = m_model.read(
        [&](const DesktopModel& model) { return model.application(pid) != nullptr; });
    if (!isThere)
        return {AXError::cannotComplete, nullptr};
    return {AXError::success, m_observers.makeObserver(pid, thread, std::move(callback))};
}

}
