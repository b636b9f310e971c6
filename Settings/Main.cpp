#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include <adwaita.h>

#include "Hosts/Linux/Gettext.h"
#include "Hosts/Posix/ControlAddress.h"
#include "Settings/SettingsWindow.h"
#include "Settings/Toolkit/Appearance.h"
#include "Settings/Toolkit/SignalHandler.h"

namespace quorvel::settings {

namespace {

/// One program on each display of a session; names of applications have letters, digits, - and _.
std::string applicationID()
{
    const char* display = std::getenv("DISPLAY");
    std::string name = posix::displayFileName(display ? display : "");
    for (auto& character : name) {
        if (!g_ascii_isalnum(character))
            character = '_';
    }
    return "com.quorvel.Settings." + name;
}

int run(int count, char** values)
{
    const xdg::GObjectHandle<AdwApplication> application{
        adw_application_new(applicationID().c_str(), G_APPLICATION_ALLOW_REPLACEMENT)};
    std::unique_ptr<SettingsWindow> window;
    const SignalHandler activates{application.get(), "activate", [&] {
                                      if (!window || !window->isOpen())
                                          window = std::make_unique<SettingsWindow>(
                                              GTK_APPLICATION(application.get()));
                                      window->present();
                                  }};
    return g_application_run(G_APPLICATION(application.get()), count, values);
}

}

}

int main(int count, char** values)
{
    std::setlocale(LC_ALL, "");
    quorvel::xdg::useGettext();
    if (!quorvel::settings::startToolkit()) {
        std::fputs("quorvel-settings: no display\n", stderr);
        return 1;
    }
    return quorvel::settings::run(count, values);
}
