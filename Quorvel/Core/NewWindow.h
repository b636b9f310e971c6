#pragma once

#include <string>
#include <string_view>

namespace quorvel {

class Workspace;

/// How applications name the action that opens one.
inline constexpr std::string_view kNewWindowAction = "new-window";

/// Another window of an application: by what it offers for that, else as another instance of it;
/// where neither is possible the application is started or comes to the front.
void openNewWindow(Workspace&, const std::string& bundleID);

}
