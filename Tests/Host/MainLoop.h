#pragma once

#include <chrono>
#include <functional>

#include <glib.h>

namespace quorvel::xdg::x11 {

/// Lets what the main loop hears of come in until the condition holds.
inline bool eventually(const std::function<bool()>& holds)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds{60};
    const auto ticks
        = g_timeout_add(10, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
    while (!holds() && std::chrono::steady_clock::now() < deadline)
        g_main_context_iteration(nullptr, true);
    g_source_remove(ticks);
    return holds();
}

}
