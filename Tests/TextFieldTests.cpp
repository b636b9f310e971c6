// A text field in a window of its own: what is seen of it and what pointer, keys, input methods,
// the clipboard and assistive programs do.
#include <gmock/gmock.h>

#include "Quorvel/Views/BarHostingView.h"
#include "Quorvel/Views/Kit/ButtonView.h"
#include "Quorvel/Views/Kit/LabelView.h"
#include "Quorvel/Views/Kit/TextFieldView.h"
#include "Quorvel/Views/Kit/WrappedText.h"
#include "Quorvel/Views/Menu/Menus.h"
#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr double kLetter = 6.5; ///< of the fake's font at 13 points
constexpr Rect kField{20, 40, 66, 20}; ///< ten letters and the caret

struct Window : View {
    bool isColumn() const override { return true; }
    TextInputClient* textInput() override { return field->textInput(); }
    bool keyPressed(const KeyEvent& event) override
    {
        keys.push_back(event.keyCode);
        return field->takeTyping(event);
    }

    TextFieldView* field = nullptr;
    std::vector<KeyCode> keys; ///< that the view with the keyboard left
};

struct Button : ButtonView {
    using ButtonView::ButtonView;
    std::string accessibleID() const override { return "button"; }
    AccessibleState accessibleState() const override { return buttonState("Clear", "Clear"); }
};

struct TextFieldTest : testing::Test {
    FakeDesktop desktop;
    Palette palette = Palette::of({});
    Menus menus{desktop.platform()};
    BarHostingView hosting{BarHostingView::Keyboard::own};
    std::unique_ptr<PanelSurface> surface;
    Window* window = nullptr;
    TextFieldView* field = nullptr;
    Button* button = nullptr;
    std::vector<std::string> changes;

    void open()
    {
        surface = desktop.surfaces().createPanel(
            {.title = "Apps", .kind = PanelKind::launcher}, hosting);
        surface->setFrame({100, 100, 200, 100});
        hosting.attach(*surface);
        auto content = std::make_unique<Window>();
        window = content.get();
        button = &content->addChild(std::make_unique<Button>(palette));
        field = window->field = &content->addChild(std::make_unique<TextFieldView>(
            TextFieldView::Inputs{desktop.platform(), *surface, palette}, "Search"));
        content
            ->addChild(
                std::make_unique<LabelView>(desktop.platform().text, palette, LabelView::Look{}))
            .setFrame({0, 0, 200, 20});
        field->setFrame(kField);
        button->setFrame({5, 70, 20, 20});
        field->onTextChanged = [this](auto& text) { changes.push_back(text); };
        field->onMenuRequested = [this](Menu menu, const Rect& anchor) {
            menus.popUp(*surface, std::move(menu), anchor, {});
        };
        hosting.setContent(std::move(content));
        surface->makeKeyAndOrderFront();
        desktop.drain();
    }
    void SetUp() override { open(); }
    void TearDown() override
    {
        menus.close();
        desktop.drain();
        hosting.setContent(nullptr);
    }

    FakePanel& panel() { return *desktop.surfaces().launcher(); }
    Point at(double letters) { return {kField.x + letters * kLetter, kField.y + 10}; }
    void press(KeyCode key, std::uint64_t modifiers = 0)
    {
        panel().pressKey({.keyCode = key, .modifiers = modifiers});
    }
    void control(const std::string& letter, std::uint64_t more = 0)
    {
        panel().pressKey({.characters = "\x01",
            .charactersIgnoringModifiers = letter,
            .modifiers = KeyModifier::control | more});
    }
    std::string selected() { return field->editing().selectedText(); }
    std::optional<std::string> primary()
    {
        return desktop.surfaces().sharedTexts().text(ClipboardKind::primary);
    }
    std::optional<std::string> copied()
    {
        return desktop.surfaces().sharedTexts().text(ClipboardKind::clipboard);
    }
    /// Where the caret is drawn; absent while it is not.
    std::optional<double> caretX()
    {
        for (auto& fill : panel().render().drawn<DrawnFill>()) {
            if (fill.rect.width == 1 && fill.color == palette.text)
                return fill.visible.x;
        }
        return {};
    }
};

}

// Faults: keys with Control type; what is typed while the keyboard is elsewhere is lost; arrows and
// Return, which are for the list, end in the field.
TEST_F(TextFieldTest, takesItsKeysAndLeavesTheOthersToTheWindow)
{
    EXPECT_TRUE(panel().hasKeyboard());
    EXPECT_TRUE(field->hasFocus());
    EXPECT_TRUE(panel().type("good day"));
    press(KeyCode::left, KeyModifier::control);
    press(KeyCode::backspace);
    press(KeyCode::end, KeyModifier::shift);
    EXPECT_EQ(selected(), "day");
    EXPECT_EQ(primary(), "day");
    press(KeyCode::left);
    panel().type("to");
    EXPECT_EQ(changes.back(), "goodtoday");
    press(KeyCode::home);
    press(KeyCode::forwardDelete, KeyModifier::control);
    EXPECT_EQ(field->text(), "");
    control("z");
    EXPECT_EQ(field->text(), "goodtoday");
    control("z", KeyModifier::shift);
    control("я"); // the key of that place is another's
    EXPECT_EQ(field->text(), "");

    EXPECT_THAT(window->keys, ElementsAre(KeyCode::unknown));
    for (auto key : {KeyCode::up, KeyCode::down, KeyCode::pageUp, KeyCode::enter, KeyCode::escape})
        press(key);
    EXPECT_THAT(window->keys,
        ElementsAre(KeyCode::unknown, KeyCode::up, KeyCode::down, KeyCode::pageUp, KeyCode::enter,
            KeyCode::escape));

    press(KeyCode::tab);
    EXPECT_FALSE(field->hasFocus());
    EXPECT_TRUE(button->accessibleState().hasKeyFocus);
    panel().type("x");
    EXPECT_TRUE(field->hasFocus());
    EXPECT_EQ(field->text(), "x");
    press(KeyCode::tab, KeyModifier::shift);
    panel().textInput()->insertText("é");
    EXPECT_EQ(field->text(), "xé") << "what an input method composes goes there too";
}

// Faults: Tab runs by the place from left to right, or stops at a label; a button in a window gives
// the keyboard away when it is used.
TEST_F(TextFieldTest, tabWalksDownTheWindowAndButtonsKeepTheKeyboard)
{
    int taps = 0;
    button->onTapped = [&] { ++taps; };
    std::vector<const View*> walk;
    for (int i = 0; i < 3; ++i) {
        walk.push_back(hosting.keyFocusedView());
        press(KeyCode::tab);
    }
    EXPECT_THAT(walk, ElementsAre(field, button, field));
    press(KeyCode::space);
    EXPECT_EQ(taps, 1);
    EXPECT_TRUE(panel().hasKeyboard());
    std::vector<bool> keyboard;
    hosting.onKeyboardChanged = [&](bool has) { keyboard.push_back(has); };
    desktop.surfaces().pressElsewhere({5, 5});
    EXPECT_THAT(keyboard, ElementsAre(false));
    EXPECT_EQ(hosting.keyFocusedView(), nullptr);
}

// Faults: a press hits beside the letter in a scrolled line; a drag beyond the edge does not
// scroll; the selection is offered to the middle button while it still changes.
TEST_F(TextFieldTest, thePointerPlacesTheCaretAndSelects)
{
    field->setText("alpha beta gamma");
    auto click = [&](double letters, std::uint64_t modifiers = 0) {
        panel().setModifiers(modifiers);
        panel().click(at(letters));
        panel().setModifiers(0);
        desktop.advance(ClickCount::kLongestPause / 3);
    };
    EXPECT_NEAR(*caretX(), kField.maxX() - 1, 0.01) << "it ends in sight";
    click(3.2); // six letters are out of sight
    EXPECT_EQ(field->editing().caret(), 9u);
    click(3.2);
    EXPECT_EQ(selected(), "beta");
    click(3.2);
    EXPECT_EQ(selected(), "alpha beta gamma");
    EXPECT_EQ(primary(), "alpha beta gamma");
    desktop.advance(seconds(1));
    press(KeyCode::home);
    click(2);
    click(6, KeyModifier::shift);
    EXPECT_EQ(selected(), "pha ");

    desktop.advance(seconds(1));
    desktop.surfaces().sharedTexts().clear(ClipboardKind::primary);
    panel().press(at(2));
    panel().movePointer(at(40));
    EXPECT_EQ(selected(), "pha beta gamma");
    EXPECT_EQ(primary(), std::nullopt);
    panel().release(at(40));
    EXPECT_EQ(primary(), "pha beta gamma");
    EXPECT_THAT(changes, IsEmpty());
}

TEST_F(TextFieldTest, exchangesTextsWithOtherPrograms)
{
    panel().type("one two");
    press(KeyCode::left, KeyModifier::control | KeyModifier::shift);
    control("c");
    EXPECT_EQ(copied(), "two");
    press(KeyCode::forwardDelete, KeyModifier::shift);
    EXPECT_EQ(field->text(), "one ");
    control("v");
    press(KeyCode::insert, KeyModifier::shift);
    EXPECT_EQ(field->text(), "one ") << "the answer is on its way";
    desktop.drain();
    EXPECT_EQ(field->text(), "one twotwo");

    desktop.surfaces().sharedTexts().setText(ClipboardKind::primary, "a\nb ");
    panel().click(at(0), PointerButton::middle);
    desktop.drain();
    EXPECT_EQ(field->text(), "a b one twotwo");

    control("x");
    EXPECT_EQ(copied(), "two") << "nothing is selected";
    desktop.surfaces().sharedTexts().clear(ClipboardKind::clipboard);
    control("v");
    desktop.drain();
    EXPECT_EQ(field->text(), "a b one twotwo");

    panel().press(at(1), PointerButton::secondary);
    panel().release(at(1), PointerButton::secondary);
    EXPECT_THAT(
        desktop.surfaces().menuTitles(), ElementsAre("Cut", "Copy", "Paste", "", "Select All"));
    EXPECT_FALSE(desktop.surfaces().chooseMenuItem("Cut"));
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Select All"));
    desktop.drain();
    EXPECT_EQ(selected(), "a b one twotwo");

    // It may be gone before the answer.
    control("v");
    hosting.setContent(nullptr);
    desktop.drain();
}

// Faults: the caret blinks for nobody, or for ever, and an idle machine wakes up for it.
TEST_F(TextFieldTest, theCaretBlinksForAWhileAfterAKey)
{
    EXPECT_TRUE(caretX());
    desktop.advance(CaretBlink::kOn);
    EXPECT_FALSE(caretX());
    panel().type("a");
    EXPECT_TRUE(caretX()) << "a key shows it";
    desktop.advance(CaretBlink::kLasts + seconds(2));
    EXPECT_TRUE(caretX());
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u);
    panel().type("b");
    press(KeyCode::tab);
    EXPECT_FALSE(caretX());
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u);

    desktop.program().setAppearance({.reduceMotion = true});
    press(KeyCode::tab);
    EXPECT_TRUE(caretX());
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u);
}

// Faults: Hebrew begins at the left; the left arrow goes to the right; the selection is drawn
// beside its letters; a placeholder stays behind the text, or has the caret on its first letter.
TEST_F(TextFieldTest, aLineBeginsWhereItsScriptBegins)
{
    field->setPlaceholder("Search");
    EXPECT_NEAR(*caretX(), kField.x, 0.01);
    auto drawn = panel().render();
    ASSERT_TRUE(drawn.text("Search"));
    EXPECT_GT(drawn.text("Search")->rect.x, *caretX() + 1);
    panel().type("שלום");
    EXPECT_FALSE(panel().render().text("Search"));
    double end = kField.maxX() - 1;
    EXPECT_NEAR(*caretX(), end - 4 * kLetter, 0.01);
    press(KeyCode::right);
    EXPECT_NEAR(*caretX(), end - 3 * kLetter, 0.01);
    EXPECT_EQ(field->editing().caret(), 6u);
    press(KeyCode::left, KeyModifier::shift);
    EXPECT_EQ(selected(), "ם");
    auto fills = panel().render().drawn<DrawnFill>();
    auto part = std::ranges::find(fills, palette.highlight, &DrawnFill::color);
    ASSERT_NE(part, fills.end());
    EXPECT_NEAR(part->rect.x, end - 4 * kLetter, 0.01);
    EXPECT_NEAR(part->rect.width, kLetter, 0.01);
    EXPECT_FALSE(caretX()) << "a selection has no caret";
    press(KeyCode::home);
    EXPECT_NEAR(*caretX(), end, 0.01);
    press(KeyCode::left, KeyModifier::control);
    EXPECT_NEAR(*caretX(), end - 4 * kLetter, 0.01);
    panel().click({end - 0.25 * kLetter, kField.centre().y});
    EXPECT_EQ(field->editing().caret(), 0u);
    panel().click({end - 1.75 * kLetter, kField.centre().y});
    EXPECT_EQ(field->editing().caret(), 4u);

    // Between two directions the arrows still go by what is seen.
    field->setText("ab שלום");
    std::vector<double> places;
    press(KeyCode::home);
    for (int i = 0; i < 7; ++i) {
        places.push_back(*caretX());
        press(KeyCode::right);
    }
    EXPECT_TRUE(std::ranges::is_sorted(places));
    EXPECT_EQ(std::set<double>(places.begin(), places.end()).size(), 7u);

    desktop.program().setAppearance({.isRightToLeft = true});
    field->appearanceDidChange();
    field->setText("");
    EXPECT_NEAR(*caretX(), end, 0.01) << "an empty one begins where the interface does";
}

// Faults: the letters being composed are searched for, or lost when the user clicks; the input
// method's window stays where the caret was.
TEST_F(TextFieldTest, showsWhatAnInputMethodComposes)
{
    panel().type("ab");
    auto* input = panel().textInput();
    ASSERT_TRUE(input);
    auto told = panel().textInputChanges();
    input->setComposition("かな", 3);
    EXPECT_GT(panel().textInputChanges(), told);
    EXPECT_NEAR(input->caretFrame().x, kField.x + 3 * kLetter, 0.01);
    EXPECT_NEAR(input->caretFrame().centre().y, kField.centre().y, 0.01);
    EXPECT_EQ(field->text(), "ab");
    auto drawn = panel().render();
    EXPECT_TRUE(drawn.text("abかな"));
    auto fills = drawn.drawn<DrawnFill>();
    EXPECT_TRUE(std::ranges::any_of(fills, [](auto& fill) {
        return fill.rect.height == 1 && std::abs(fill.rect.width - 2 * kLetter) < 0.01;
    })) << "underlined";

    EXPECT_EQ(panel().forgottenCompositions(), 0);
    panel().click(at(0));
    EXPECT_EQ(panel().forgottenCompositions(), 1);
    EXPECT_EQ(field->text(), "abかな");
    input->setComposition("x", 1);
    input->insertText("X");
    EXPECT_EQ(field->text(), "Xabかな");
    EXPECT_EQ(panel().forgottenCompositions(), 1) << "it has finished itself";
    input->setComposition("y", 1);
    press(KeyCode::tab);
    EXPECT_EQ(field->text(), "Xyabかな");
    EXPECT_EQ(panel().forgottenCompositions(), 2);
    input->setComposition("", 0);
    EXPECT_FALSE(field->hasFocus()) << "nothing was being composed";
    input->setComposition("z", 1);
    field->setText("");
    EXPECT_EQ(panel().forgottenCompositions(), 3);
    EXPECT_EQ(field->text(), "");
    EXPECT_EQ(changes.back(), "Xyabかな") << "what the program sets is no news";
}

TEST_F(TextFieldTest, assistiveProgramsReadAndChangeIt)
{
    field->setPlaceholder("Search");
    field->setText("one two");
    auto elements = panel().accessibleRoot()->accessibleChildren();
    ASSERT_EQ(elements.size(), 3u);
    EXPECT_EQ(elements[0]->accessibleState().role, AccessibleRole::label);
    auto& element = *elements[1];
    EXPECT_EQ(element.accessibleState().role, AccessibleRole::textField);
    EXPECT_EQ(element.accessibleState().text, (AccessibleText{"one two", "Search", 7, 7, 7}));
    EXPECT_TRUE(element.setAccessibleSelection(4, 99));
    EXPECT_EQ(element.accessibleState().text, (AccessibleText{"one two", "Search", 7, 4, 7}));
    auto frame = element.accessibleTextFrame(4, 7);
    EXPECT_NEAR(frame.x, kField.x + 4 * kLetter, 0.01);
    EXPECT_NEAR(frame.width, 3 * kLetter, 0.01);
    EXPECT_NEAR(element.accessibleTextFrame(4, 4).x, frame.x, 0.01);
    EXPECT_EQ(element.accessibleOffsetAt(at(2)), 2u);
    EXPECT_TRUE(element.setAccessibleText("new\nline"));
    EXPECT_THAT(changes, ElementsAre("new line"));
    press(KeyCode::tab);
    EXPECT_TRUE(element.takeAccessibleFocus());
    EXPECT_TRUE(field->hasFocus());
}

struct SystemTextFieldTest : TextFieldTest {
    void SetUp() override
    {
        desktop.surfaces().setHasNativeTextFields(true);
        open();
    }
    FakeTextField& native() { return *desktop.surfaces().nativeTextField(); }
};

// Faults: the text is drawn twice; a key is used by the view before the system's field has seen it;
// the two have different texts, or tell each other for ever.
TEST_F(SystemTextFieldTest, aFieldOfTheSystemLiesOverTheView)
{
    EXPECT_EQ(native().frame(), kField);
    EXPECT_TRUE(native().isFocused());
    EXPECT_EQ(native().style().size, 13);
    field->setPlaceholder("Search");
    EXPECT_EQ(native().placeholder(), "Search");
    native().type("abc");
    EXPECT_THAT(changes, ElementsAre("abc"));
    EXPECT_FALSE(panel().type("d")) << "the field types itself";
    EXPECT_EQ(panel().textInput(), nullptr);
    press(KeyCode::down);
    EXPECT_EQ(window->keys.back(), KeyCode::down);
    field->setText("");
    EXPECT_EQ(native().text(), "");
    EXPECT_THAT(changes, ElementsAre("abc"));
    EXPECT_THAT(panel().render().texts(), IsEmpty());

    press(KeyCode::tab);
    EXPECT_FALSE(native().isFocused());
    EXPECT_FALSE(panel().type("e"));
    EXPECT_TRUE(native().isFocused()) << "it is the next to see the key";
    press(KeyCode::tab);
    native().setFocused(true); // by a click
    EXPECT_EQ(hosting.keyFocusedView(), field);
    field->setFrame(kField.translated(0, 5));
    EXPECT_EQ(native().frame(), kField.translated(0, 5));
    EXPECT_EQ(panel().accessibleRoot()->accessibleChildren().size(), 2u)
        << "assistive programs find the system's own";
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u);
}

// Faults: a long word has no end, a line is wider than the view, words are lost at a break.
TEST_F(TextFieldTest, aLabelBreaksItsTextIntoLines)
{
    auto& text = desktop.platform().text;
    auto lines = [&](std::string_view utf8, std::size_t most) {
        return wrappedLines(text, utf8, {.size = 12, .color = {}}, 60, most); // ten letters
    };
    EXPECT_THAT(lines("No apps matching \"x\"", 9), ElementsAre("No apps", "matching", "\"x\""));
    EXPECT_THAT(lines(" one  two\nthree ", 9), ElementsAre("one  two", "three "));
    EXPECT_THAT(lines("abcdefghijklm n", 9), ElementsAre("abcdefghij", "klm n"));
    EXPECT_THAT(lines("No apps matching \"x\"", 2), ElementsAre("No apps", "matching \"x\""));
    EXPECT_THAT(lines("", 2), IsEmpty());
    EXPECT_THAT(wrappedLines(text, "ab", {.size = 12, .color = {}}, 1, 9), ElementsAre("a", "b"));

    LabelView label{text, palette, {.size = 12, .mostLines = 3}};
    label.setText("No apps matching \"x\"");
    EXPECT_EQ(label.heightFor(60), 45);
    label.setFrame({0, 0, 60, 65});
    RecordingCanvas canvas{{0, 0, 100, 100}};
    label.paintTree(canvas, {0, 0, 100, 100});
    auto drawn = canvas.drawn<DrawnText>();
    ASSERT_EQ(drawn.size(), 3u);
    EXPECT_EQ(drawn[0].rect, (Rect{0, 10, 60, 15}));
    EXPECT_EQ(drawn[2].rect, (Rect{0, 40, 60, 15}));
}

}
