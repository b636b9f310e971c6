#pragma once

#include <string>
#include <vector>

#include "Quorvel/Platform/ControlChannel.h"

namespace quorvel {

class UserSettings;

bool isSettingsRequest(const std::vector<std::string>& arguments);

/// Answers "--get [FIELD]" and applies "--set FIELD=VALUE", for scripts.
ControlReply answerSettingsRequest(UserSettings&, const std::vector<std::string>& arguments);

}
