#pragma once

#include <functional>
#include <span>

#include <glib-object.h>

#include "Hosts/Linux/GHandles.h"

namespace quorvel::settings {

/// What a GObject signal brings: the instance first, then its arguments.
using SignalArguments = std::span<const GValue>;

/// A handler of a GObject signal, which goes with this object; the instance stays at least as long.
class SignalHandler {
public:
    SignalHandler() = default;
    SignalHandler(gpointer instance, const char* name, std::function<void()>);
    SignalHandler(gpointer instance, const char* name, std::function<void(SignalArguments)>);
    /// For a signal that expects a boolean answer.
    static SignalHandler answered(
        gpointer instance, const char* name, std::function<bool(SignalArguments)>);
    SignalHandler(SignalHandler&&) noexcept = default;
    SignalHandler& operator=(SignalHandler&&) noexcept;
    ~SignalHandler() { disconnect(); }

    /// The handler is not called for what `change` does.
    void mutedFor(const std::function<void()>& change) const;

private:
    using Handler = std::function<void(SignalArguments, GValue*)>;

    SignalHandler(gpointer instance, const char* name, Handler*);
    void disconnect();

    xdg::GObjectHandle<GObject> m_instance;
    gulong m_handler = 0;
};

}
