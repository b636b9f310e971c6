#pragma once

#include <vector>

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::test {

/// Writes down what the rules tell it.
struct PanelClient final : SurfaceClient {
    void paint(Canvas&, const Rect&) override { }
    void pointerEvent(const PointerEvent& event) override
    {
        heard.push_back(event.action);
        buttons.push_back(event.button);
    }
    void pointerLost() override { ++losses; }
    void scrollEvent(const ScrollEvent&) override { }
    void surfaceDidResize(Size) override { }
    void keyboardDidChange(bool hasKeyboard) override { keyboard.push_back(hasKeyboard); }

    std::vector<PointerAction> heard;
    std::vector<PointerButton> buttons;
    std::vector<bool> keyboard;
    int losses = 0;
};

}
