#pragma once

#include <string>

#include <gio/gio.h>

namespace quorvel::xdg {

struct LaunchRequest;

constexpr const char* kApplicationInterface = "org.freedesktop.Application";

/// A message that starts an application on the session bus, or makes the running one act.
struct ActivationMessage {
    const char* method;
    GVariant* parameters; ///< for the call, which takes it over
};

ActivationMessage activationMessage(const LaunchRequest&);

/// The application's object, by its name on the bus.
std::string objectPath(const std::string& busName);

/// Whether the application may still show up after this error: to start it a second way could give
/// the user two.
bool mayStillCome(const GError*);

}
