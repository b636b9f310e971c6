#pragma once

#include <optional>

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

class Application;
class UserSettings;

/// The menu of the bar itself. Changes of settings apply at once. All parameters outlive it.
Menu barMenu(UserSettings&, Application&, std::optional<MenuItem> monitor);

}
