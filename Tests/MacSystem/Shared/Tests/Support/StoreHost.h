#pragma once

// Found before the file of the same name, so that the tests of the window store run once more over
// the macOS host: same desktop, same faults, but every answer goes through the system's types.

#include "Tests/MacSystem/Support/MacFixture.h"

namespace quorvel::test {

struct StoreHost : MacFixture {
    MacAccessibility macAccessibility{PrivateSymbols::load()};
    MacWindowServer macWindowServer = makeWindowServer();
    MacDisplays macDisplays;
    Platform platform{mac.dispatch(), macAccessibility, macWindowServer, macDisplays,
        desktop.workspace(), desktop.bundles(), desktop.screenCapture(), desktop.program(),
        desktop.surfaces(), desktop.platform().text, desktop.control(), desktop.files(),
        desktop.loginItem(), desktop.launchServices(), desktop.trace()};
    Subscription screensChanged = desktop.displays().parametersDidChange.subscribe(
        [this] { macDisplays.setScreens(desktop.displays().screens()); });

    StoreHost() { macDisplays.setScreens(desktop.displays().screens()); }
};

}
