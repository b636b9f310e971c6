#include "Settings/Toolkit/SignalHandler.h"

#include <utility>

namespace quorvel::settings {

namespace {

using Handler = std::function<void(SignalArguments, GValue*)>;

void call(GClosure*, GValue* answer, guint count, const GValue* values, gpointer, gpointer handler)
{
    (*static_cast<const Handler*>(handler))({values, count}, answer);
}

void forget(gpointer handler, GClosure*)
{
    delete static_cast<Handler*>(handler);
}

}

SignalHandler::SignalHandler(gpointer instance, const char* name, Handler* handler)
    : m_instance(static_cast<GObject*>(g_object_ref(instance)))
{
    auto* closure = g_closure_new_simple(sizeof(GClosure), nullptr);
    g_closure_set_meta_marshal(closure, handler, call);
    g_closure_add_finalize_notifier(closure, handler, forget);
    m_handler = g_signal_connect_closure(instance, name, closure, /*after=*/false);
}

SignalHandler::SignalHandler(gpointer instance, const char* name, std::function<void()> handler)
    : SignalHandler(instance, name,
          new Handler{[handler = std::move(handler)](SignalArguments, GValue*) { handler(); }})
{
}

SignalHandler::SignalHandler(
    gpointer instance, const char* name, std::function<void(SignalArguments)> handler)
    : SignalHandler(instance, name,
          new Handler{[handler = std::move(handler)](
                          SignalArguments arguments, GValue*) { handler(arguments); }})
{
}

SignalHandler SignalHandler::answered(
    gpointer instance, const char* name, std::function<bool(SignalArguments)> handler)
{
    return SignalHandler(instance, name,
        new Handler{[handler = std::move(handler)](SignalArguments arguments, GValue* answer) {
            g_value_set_boolean(answer, handler(arguments));
        }});
}

SignalHandler& SignalHandler::operator=(SignalHandler&& other) noexcept
{
    if (this != &other) {
        disconnect();
        m_instance = std::move(other.m_instance);
        m_handler = std::exchange(other.m_handler, 0);
    }
    return *this;
}

void SignalHandler::disconnect()
{
    // A widget that was destroyed has let go of its handlers itself.
    if (m_instance && g_signal_handler_is_connected(m_instance.get(), m_handler))
        g_signal_handler_disconnect(m_instance.get(), m_handler);
    m_instance.reset();
}

void SignalHandler::mutedFor(const std::function<void()>& change) const
{
    g_signal_handler_block(m_instance.get(), m_handler);
    change();
    g_signal_handler_unblock(m_instance.get(), m_handler);
}

}
