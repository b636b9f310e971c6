#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Surfaces.h"
#include "Tests/Support/FakeClipboard.h"
#include "Tests/Support/FakeTextField.h"
#include "Tests/Support/RecordingCanvas.h"

namespace quorvel::test {

class FakeDesktop;
class FakeSurfaces;

/// One call of paint: what was asked for, and what came.
struct Paint {
    Rect damage;
    RecordingCanvas canvas;
};

/// A panel that a test can look at, point at and scroll on. All places are points from its top
/// left.
class FakePanel final : public PanelSurface {
public:
    FakePanel(FakeDesktop&, FakeSurfaces&, PanelOptions, SurfaceClient&);
    ~FakePanel() override;

    void setFrame(const Rect&) override;
    Rect frame() const override { return m_frame; }
    void orderFront() override;
    void orderOut() override;
    void setCanBecomeKey(bool canBecomeKey) override { m_canBecomeKey = canBecomeKey; }
    void makeKeyAndOrderFront() override;
    bool isVisible() const override;
    double scale() const override;
    void invalidate(const Rect&) override;
    bool setBlursBehind(const std::optional<VisualEffect>&) override;
    void setOpacity(double opacity) override { m_opacity = opacity; }
    void setSlide(double share) override;
    Duration frameInterval() const override { return seconds(1.0 / 60); }
    bool takeKeyboard() override;
    void releaseKeyboard() override;
    bool grabInput() override;
    void accessibleTreeDidChange() override { }
    void setCursor(Cursor cursor) override { m_cursor = cursor; }
    void textInputDidChange() override { ++m_textInputChanges; }
    void forgetComposition() override { ++m_forgottenCompositions; }

    const PanelOptions& options() const { return m_options; }
    bool isOrderedIn() const { return m_isOrderedIn; }
    bool canBecomeKey() const { return m_canBecomeKey; }
    double opacity() const { return m_opacity; }
    double slide() const { return m_slide; }
    const std::optional<VisualEffect>& effect() const { return m_effect; }
    std::optional<Cursor> cursor() const { return m_cursor; }
    Rect bounds() const { return Rect::from({}, m_frame.size()); }

    /// The whole panel, drawn now for the test only.
    RecordingCanvas render() const;
    void renderOn(Canvas& canvas, const Rect& damage) const { m_client.paint(canvas, damage); }
    /// What the program painted of its own accord.
    const std::vector<Paint>& paints() const { return m_paints; }
    void forgetPaints() { m_paints = std::vector<Paint>{}; }
    /// The frames it was given, in order.
    const std::vector<Rect>& frames() const { return m_frames; }
    void forgetFrames() { m_frames = std::vector<Rect>{}; }

    /// Moves the pointer; coming from outside, it enters first.
    void movePointer(Point);
    void leave();
    void press(Point, PointerButton = PointerButton::primary);
    void release(Point, PointerButton = PointerButton::primary);
    /// The user presses a window's close button.
    void clickCloseButton() { m_client.closeRequested(); }
    /// Of which the program does not hear.
    void releaseUnheard(PointerButton button) { setHeld(button, false); }
    /// As when a menu takes it.
    void losePointer();
    void click(Point, PointerButton = PointerButton::primary);
    void scroll(ScrollEvent);
    void scroll(Point, double deltaY, bool isDirectionInverted = false);
    /// Notches of a wheel.
    void scrollSideways(Point at, double deltaX) { scroll({.location = at, .deltaX = deltaX}); }
    /// False if the program does not have the keyboard, or the key means nothing to it.
    bool pressKey(const KeyEvent&);
    bool pressKey(KeyCode key) { return pressKey(KeyEvent{.keyCode = key}); }
    bool hasKeyboard() const { return m_hasKeyboard; }
    /// A key for each character; false if one of them means nothing to the program.
    bool type(std::string_view utf8);
    /// What an input method talks to; null if nothing takes text.
    TextInputClient* textInput() const { return m_client.textInputClient(); }
    int textInputChanges() const { return m_textInputChanges; }
    int forgottenCompositions() const { return m_forgottenCompositions; }
    /// The modifiers that go with what the pointer does from now on.
    void setModifiers(std::uint64_t modifiers) { m_modifiers = modifiers; }
    bool dragFiles(DropAction, Point, std::vector<std::string> paths = {});
    AccessibleElement* accessibleRoot() const { return m_client.accessibleRoot(); }
    /// Of the whole panel, as a screen reader comes by them.
    std::vector<AccessibleElement*> elements() const;

private:
    void send(PointerAction, Point, PointerButton = PointerButton::none);
    void setHeld(PointerButton, bool isHeld);
    /// The panel that hears of the pointer, and the place in it.
    std::pair<FakePanel&, Point> listener(Point);
    void paintDamage();

    FakeDesktop& m_desktop;
    FakeSurfaces& m_surfaces;
    PanelOptions m_options;
    SurfaceClient& m_client;
    Rect m_frame;
    bool m_isOrderedIn = false;
    bool m_canBecomeKey = false;
    std::optional<VisualEffect> m_effect;
    double m_opacity = 1;
    double m_slide = 0;
    bool m_hasPointer = false;
    std::uint64_t m_modifiers = 0;
    std::optional<Cursor> m_cursor;
    int m_textInputChanges = 0;
    int m_forgottenCompositions = 0;
    bool m_hasKeyboard = false;
    std::vector<Rect> m_damage; // disjoint, painted at the next frame
    std::vector<Rect> m_frames;
    std::vector<Paint> m_paints;
    WorkItem m_nextFrame;
};

/// The panels and menus that are on the screen.
class FakeSurfaces final : public Surfaces {
public:
    explicit FakeSurfaces(FakeDesktop&);

    std::unique_ptr<PanelSurface> createPanel(const PanelOptions&, SurfaceClient&) override;
    Subscription monitorPointer(PointerScope, std::function<void()>) override;
    NativeMenus* nativeMenus() override { return m_nativeMenus; }
    void setNativeMenus(NativeMenus* menus) { m_nativeMenus = menus; }
    Subscription monitorPresses(PointerScope, PressHandler) override;
    Clipboard* clipboard() override { return m_hasNativeTextFields ? nullptr : &m_clipboard; }
    std::unique_ptr<NativeTextField> createTextField(
        PanelSurface&, NativeTextFieldClient&) override;
    /// Whether or not the program is offered it.
    FakeClipboard& sharedTexts() { return m_clipboard; }
    /// As on the Mac; of fields that are made afterwards.
    void setHasNativeTextFields(bool value) { m_hasNativeTextFields = value; }
    /// Null if there is none.
    FakeTextField* nativeTextField() const { return m_textField; }

    /// In the order made.
    const std::vector<FakePanel*>& panels() const { return m_panels; }
    /// The space's bar; null if there is none.
    FakePanel* panel(SpaceID, std::optional<DisplayNumber> = {}) const;
    FakePanel* fullscreenProxy(SpaceID space) const
    {
        return firstOf(panels(space, PanelKind::fullscreenProxy));
    }
    int panelsMade() const { return m_panelsMade; }

    /// The open menu, null if there is none, and after it its submenus.
    FakePanel* menu() const { return firstOf(menus()); }
    std::vector<FakePanel*> menus() const { return open(PanelKind::menu); }
    void closeMenu();
    /// Of the open menu; separators have none.
    std::vector<std::string> menuTitles() const;
    /// The entries with a mark, of the open menu and its open submenus.
    std::vector<std::string> checkedMenuTitles() const;
    /// As an assistive program does. False if neither the open menu nor one below it has such an
    /// enabled entry.
    bool chooseMenuItem(std::string_view title);
    /// The popup that is on the screen; null if there is none.
    FakePanel* popup() const { return firstOf(popups()); }
    /// In the order made.
    std::vector<FakePanel*> popups() const { return open(PanelKind::popup); }

    /// The strip at a display's edge that calls its bar; null if there is none.
    FakePanel* edge() const { return firstOf(edges()); }
    std::vector<FakePanel*> edges() const { return open(PanelKind::edge); }

    /// The launcher that is on the screen; null if there is none.
    FakePanel* launcher() const { return firstOf(open(PanelKind::launcher)); }

    /// The ordinary window that is on the screen; null if there is none.
    FakePanel* window() const { return firstOf(open(PanelKind::window)); }

    void pointerDidMove(PointerScope scope) { m_pointerMoved[scope].emit(); }
    /// On another program's window or the desktop, which then gets the keyboard. Points, global
    /// top-left origin.
    void pressElsewhere(Point, PointerButton = PointerButton::primary);
    /// Whether the system shows the space of a panel that takes the keyboard.
    void setFollowsKeyPanels(bool value) { m_followsKeyPanels = value; }
    bool followsKeyPanels() const { return m_followsKeyPanels; }

private:
    friend class FakePanel;
    static FakePanel* firstOf(const std::vector<FakePanel*>& panels)
    {
        return panels.empty() ? nullptr : panels.front();
    }
    template <typename Condition> std::vector<FakePanel*> those(PanelKind, Condition) const;
    std::vector<FakePanel*> panels(SpaceID, PanelKind) const;
    std::vector<FakePanel*> open(PanelKind) const;
    bool choose(FakePanel& menu, std::string_view title);

    FakeDesktop& m_desktop;
    std::vector<FakePanel*> m_panels;
    int m_panelsMade = 0;
    std::vector<FakePanel*> m_keyHolders; ///< the last one hears
    PointerButtons m_held;
    std::vector<FakePanel*> m_grabs; ///< of the pointer, the last one hears
    bool m_followsKeyPanels = true;
    NativeMenus* m_nativeMenus = nullptr; ///< as on the Mac, where it is given
    std::map<PointerScope, Signal<>> m_pointerMoved;
    std::map<PointerScope, Signal<Point, PointerButton>> m_pressed;
    FakeClipboard m_clipboard;
    bool m_hasNativeTextFields = false;
    FakeTextField* m_textField = nullptr; ///< the last one made, while it exists
};

}
