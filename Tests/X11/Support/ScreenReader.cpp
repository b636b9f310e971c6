#include "Tests/X11/Support/ScreenReader.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <ranges>
#include <system_error>
#include <utility>

#include <gtest/gtest.h>

namespace quorvel::x11tests {

namespace {

constexpr char kBus[] = "org.freedesktop.DBus";
constexpr char kBusPath[] = "/org/freedesktop/DBus";
constexpr char kService[] = "org.a11y.Bus";

std::string takeText(char* text)
{
    std::string copy = text ? text : "";
    g_free(text);
    return copy;
}

GDBusConnection* connectTo(const char* address)
{
    const auto flags
        = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT
            | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    return g_dbus_connection_new_for_address_sync(address, flags, nullptr, nullptr, nullptr);
}

/// 0 if nobody has the name.
pid_t processOf(GDBusConnection* bus, const char* name)
{
    auto* answer
        = g_dbus_connection_call_sync(bus, kBus, kBusPath, kBus, "GetConnectionUnixProcessID",
            g_variant_new("(s)", name), nullptr, G_DBUS_CALL_FLAGS_NONE, 10'000, nullptr, nullptr);
    guint32 pid = 0;
    if (answer)
        g_variant_get(answer, "(u)", &pid);
    g_clear_pointer(&answer, g_variant_unref);
    return static_cast<pid_t>(pid);
}

std::vector<ScreenReader::Element> childrenOf(AtspiAccessible* parent)
{
    std::vector<ScreenReader::Element> children;
    const int count = atspi_accessible_get_child_count(parent, nullptr);
    for (int index = 0; index < count; ++index) {
        if (auto* child = atspi_accessible_get_child_at_index(parent, index, nullptr))
            children.emplace_back(child);
    }
    return children;
}

/// Asks nobody who may hang: the bus tells which process it is.
bool runs(AtspiAccessible* program, const std::string& file)
{
    const auto process = std::to_string(atspi_accessible_get_process_id(program, nullptr));
    std::error_code error;
    return std::filesystem::read_symlink("/proc/" + process + "/exe", error).filename() == file;
}

ScreenReader::Element programNamed(const std::string& file)
{
    const ScreenReader::Element desktop{atspi_get_desktop(0)};
    for (auto& program : childrenOf(desktop.get())) {
        if (runs(program.get(), file))
            return std::move(program);
    }
    return nullptr;
}

/// What is in these is their name.
bool isWhole(AtspiRole role)
{
    return role == ATSPI_ROLE_PAGE_TAB || role == ATSPI_ROLE_LABEL || role == ATSPI_ROLE_IMAGE
        || role == ATSPI_ROLE_CHECK_BOX || role == ATSPI_ROLE_PUSH_BUTTON;
}

}

ScreenReader::ScreenReader(const XServer& server)
{
    // The library finds the desktop by the environment.
    for (const auto* variable : {"DBUS_SESSION_BUS_ADDRESS", "DISPLAY", "XDG_RUNTIME_DIR"})
        setenv(variable, server.environment().at(variable).c_str(), 1);
    m_session = connectTo(server.environment().at("DBUS_SESSION_BUS_ADDRESS").c_str());
    // It keeps the switch, and would start a service for that.
    auto* answer = call(kBus, kBusPath, kBus, "UpdateActivationEnvironment",
        g_variant_new_parsed("({'GSETTINGS_BACKEND': 'memory'},)"));
    g_clear_pointer(&answer, g_variant_unref);
    answer = call(kService, "/org/a11y/bus", "org.freedesktop.DBus.Properties", "Set",
        g_variant_new("(ssv)", "org.a11y.Status", "IsEnabled", g_variant_new_boolean(true)));
    EXPECT_TRUE(answer) << "no accessibility service on the session bus";
    g_clear_pointer(&answer, g_variant_unref);
    EXPECT_EQ(atspi_init(), 0);
    // On a busy machine the usual 0.8 s pass, and what was heard has no name.
    atspi_set_timeout(10'000, 10'000);
    m_listener = atspi_event_listener_new(&ScreenReader::onEvent, this, nullptr);
    for (const auto* event : {"object:property-change:accessible-name",
             "object:state-changed:checked", "object:state-changed:focused",
             "object:state-changed:selected", "object:text-changed", "object:children-changed"})
        EXPECT_TRUE(atspi_event_listener_register(m_listener, event, nullptr));
}

ScreenReader::~ScreenReader()
{
    g_object_unref(m_listener);
    atspi_exit();
    g_dbus_connection_close_sync(m_session, nullptr, nullptr);
    g_object_unref(m_session);
}

void ScreenReader::onEvent(AtspiEvent* event, void* self)
{
    const auto isOn = event->detail1 != 0 ? ":on" : ":off";
    const std::string type = event->type;
    const auto isText = G_VALUE_HOLDS_STRING(&event->any_data);
    const char* text = isText ? g_value_get_string(&event->any_data) : nullptr;
    static_cast<ScreenReader*>(self)->m_heard.push_back(
        {type.starts_with("object:state-changed") ? type + isOn : type,
            text ? text : takeText(atspi_accessible_get_name(event->source, nullptr))});
    g_boxed_free(ATSPI_TYPE_EVENT, event);
}

bool ScreenReader::hasHeard(const std::string& event, const std::string& text)
{
    while (g_main_context_iteration(nullptr, false)) { }
    return std::ranges::any_of(m_heard, [&](auto& heard) {
        return heard.type == event && heard.name.find(text) != std::string::npos;
    });
}

ScreenReader::Element ScreenReader::surfaceOf(const std::string& program) const
{
    const auto application = programNamed(program);
    if (!application)
        return nullptr;
    for (auto& surface : childrenOf(application.get())) {
        if (has(surface, ATSPI_STATE_SHOWING))
            return std::move(surface);
    }
    return nullptr;
}

std::vector<ScreenReader::Element> ScreenReader::elementsOf(const std::string& program) const
{
    const auto surface = surfaceOf(program);
    return surface ? childrenOf(surface.get()) : std::vector<Element>{};
}

ScreenReader::Element ScreenReader::find(const std::string& program, const std::string& text) const
{
    return first(
        program, [&](const std::string& name) { return name.find(text) != std::string::npos; });
}

ScreenReader::Element ScreenReader::named(const std::string& program, const std::string& name) const
{
    return first(program, [&](const std::string& candidate) { return candidate == name; });
}

template <typename Condition>
ScreenReader::Element ScreenReader::first(const std::string& program, Condition condition) const
{
    for (auto level = elementsOf(program); !level.empty();) {
        std::vector<Element> below;
        for (auto& element : level) {
            if (condition(name(element)))
                return std::move(element);
            std::ranges::move(childrenOf(element.get()), std::back_inserter(below));
        }
        level = std::move(below);
    }
    return nullptr;
}

ScreenReader::Element ScreenReader::seek(const std::string& program, AtspiRole role,
    const std::string& text, const std::function<bool(const Element&)>& isRight) const
{
    const auto application = programNamed(program);
    return application ? seekIn(application, role, text, isRight) : nullptr;
}

ScreenReader::Element ScreenReader::seekIn(const Element& whole, AtspiRole role,
    const std::string& text, const std::function<bool(const Element&)>& isRight)
{
    std::vector<Element> open; // the next one in the order of reading is the last
    open.emplace_back(ATSPI_ACCESSIBLE(g_object_ref(whole.get())));
    while (!open.empty()) {
        auto element = std::move(open.back());
        open.pop_back();
        atspi_accessible_clear_cache(element.get());
        const auto its = atspi_accessible_get_role(element.get(), nullptr);
        if (its == role && name(element).find(text) != std::string::npos && isRight(element))
            return element;
        if (isWhole(its))
            continue;
        auto children = childrenOf(element.get());
        std::ranges::move(std::views::reverse(children), std::back_inserter(open));
    }
    return nullptr;
}

std::string ScreenReader::text(const std::string& program, const std::string& fieldName) const
{
    const auto found = seek(program, ATSPI_ROLE_ENTRY, fieldName, [](auto&) { return true; });
    auto* text = found ? atspi_accessible_get_text_iface(found.get()) : nullptr;
    if (!text)
        return {};
    const auto all = takeText(atspi_text_get_text(text, 0, -1, nullptr));
    g_object_unref(text);
    return all;
}

bool ScreenReader::setText(
    const std::string& program, const std::string& fieldName, const std::string& text) const
{
    const auto found = seek(program, ATSPI_ROLE_ENTRY, fieldName, [](auto&) { return true; });
    auto* editable = found ? atspi_accessible_get_editable_text_iface(found.get()) : nullptr;
    if (!editable)
        return false;
    const bool isSet = atspi_editable_text_set_text_contents(editable, text.c_str(), nullptr);
    g_object_unref(editable);
    return isSet;
}

std::string ScreenReader::name(const Element& element)
{
    return takeText(atspi_accessible_get_name(element.get(), nullptr));
}

std::string ScreenReader::description(const Element& element)
{
    return takeText(atspi_accessible_get_description(element.get(), nullptr));
}

bool ScreenReader::has(const Element& element, AtspiStateType state)
{
    auto* states = atspi_accessible_get_state_set(element.get());
    const bool isThere = states && atspi_state_set_contains(states, state);
    g_clear_object(&states);
    return isThere;
}

Frame ScreenReader::frame(const Element& element)
{
    auto* component = atspi_accessible_get_component_iface(element.get());
    auto* extents = component
        ? atspi_component_get_extents(component, ATSPI_COORD_TYPE_SCREEN, nullptr)
        : nullptr;
    const Frame frame
        = extents ? Frame{extents->x, extents->y, extents->width, extents->height} : Frame{};
    g_free(extents);
    g_clear_object(&component);
    return frame;
}

bool ScreenReader::perform(const Element& element, const std::string& name)
{
    auto* action = atspi_accessible_get_action_iface(element.get());
    if (!action)
        return false;
    bool isDone = false;
    const int count = atspi_action_get_n_actions(action, nullptr);
    for (int index = 0; index < count && !isDone; ++index) {
        if (takeText(atspi_action_get_action_name(action, index, nullptr)) == name)
            isDone = atspi_action_do_action(action, index, nullptr);
    }
    g_object_unref(action);
    return isDone;
}

bool ScreenReader::takeFocus(const Element& element)
{
    return atspi_component_grab_focus(ATSPI_COMPONENT(element.get()), nullptr);
}

std::size_t ScreenReader::surfacesOf(const std::string& program) const
{
    const auto found = programNamed(program);
    return found ? childrenOf(found.get()).size() : 0;
}

void ScreenReader::killService()
{
    auto* answer = call(kService, "/org/a11y/bus", kService, "GetAddress", nullptr);
    ASSERT_TRUE(answer);
    const char* address = nullptr;
    g_variant_get(answer, "(&s)", &address);
    auto* bus = connectTo(address);
    g_variant_unref(answer);
    ASSERT_TRUE(bus);
    const auto busProcess = processOf(bus, kBus);
    g_object_unref(bus);
    const auto service = processOf(m_session, kService);
    ASSERT_GT(service, 1);
    ASSERT_GT(busProcess, 1);
    ::kill(service, SIGKILL);
    ::kill(busProcess, SIGKILL); // it would outlive the service
}

GVariant* ScreenReader::call(const char* name, const char* path, const char* interface,
    const char* member, GVariant* arguments) const
{
    return g_dbus_connection_call_sync(m_session, name, path, interface, member, arguments, nullptr,
        G_DBUS_CALL_FLAGS_NONE, 10'000, nullptr, nullptr);
}

}
