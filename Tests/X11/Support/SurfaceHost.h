#pragma once

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "Hosts/X11/Surface/X11Surfaces.h"
#include "Tests/X11/Support/HostServices.h"
#include "Tests/X11/Support/XServer.h"

namespace quorvel::x11tests {

/// A field that takes typed text, without any drawing.
struct FieldRecord : TextInputClient {
    void insertText(std::string_view utf8) override
    {
        text += utf8;
        composition.clear();
    }
    void setComposition(std::string_view utf8, std::size_t caret) override
    {
        composition = utf8;
        compositionCaret = caret;
    }
    Rect caretFrame() const override { return {20, 10, 1, 14}; }

    std::string text;
    std::string composition;
    std::size_t compositionCaret = 0;
};

/// Remembers what a surface is told.
struct SurfaceRecord : SurfaceClient {
    void paint(Canvas& canvas, const Rect& damage) override
    {
        canvas.fill(damage, Color::grey(0.5));
    }
    void pointerEvent(const PointerEvent& event) override { pointer.push_back(event); }
    void pointerLost() override { }
    void scrollEvent(const ScrollEvent&) override { }
    void surfaceDidResize(Size) override { }
    bool keyPressed(const KeyEvent& key) override
    {
        keys.push_back(key);
        field.text += key.characters;
        return true;
    }
    void keyboardDidChange(bool has) override { hasKeyboard = has; }
    void closeRequested() override { ++closeRequests; }
    TextInputClient* textInputClient() override { return hasField ? &field : nullptr; }

    std::vector<PointerEvent> pointer;
    std::vector<KeyEvent> keys;
    FieldRecord field; ///< the characters of all keys, too
    bool hasField = true;
    bool hasKeyboard = false;
    int closeRequests = 0;
};

/// The host's surfaces in the test's own process, for what no panel of the bar's does.
struct SurfaceHost {
    struct Surroundings {
        Surroundings(const XServer& server, Environment more) : own(std::move(more))
        {
            for (const auto* variables : {&server.environment(), &own}) {
                for (const auto& [name, value] : *variables)
                    setenv(name.c_str(), value.c_str(), 1);
            }
        }
        ~Surroundings()
        {
            for (const auto& [name, value] : own)
                unsetenv(name.c_str());
        }

        const Environment own;
    };

    /// With further variables. Nobody may set any later: threads of libraries read them.
    explicit SurfaceHost(const XServer& server, Environment more = {})
        : surroundings(server, std::move(more))
    {
    }

    std::unique_ptr<PanelSurface> make(PanelKind kind, SurfaceRecord& record)
    {
        PanelOptions options;
        options.kind = kind;
        return surfaces.createPanel(options, record);
    }

    Surroundings surroundings; // first: the services connect to the display
    HostServices host;
    Published<Appearance> appearance;
    xdg::x11::X11Surfaces surfaces{
        *host.connection, host.dispatch, host.monitors, host.environment, appearance};
};

}
