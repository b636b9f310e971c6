#pragma once

#include <functional>
#include <optional>

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

class Application;

/// The menu of the bar itself. What is empty or absent is not offered. The application outlives it.
Menu barMenu(Application&, std::function<void()> onSettings, std::optional<MenuItem> monitor);

}
