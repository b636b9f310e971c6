#include <array>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Hosts/Linux/Accessible/AccessibleNode.h"
#include "Hosts/Linux/GHandles.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::xdg {

namespace {

struct Element : AccessibleElement {
    Element(std::string id_, AccessibleRole role, std::string name) : id(std::move(id_))
    {
        state.role = role;
        state.name = std::move(name);
    }

    std::string accessibleID() const override { return id; }
    AccessibleState accessibleState() const override { return state; }
    Rect accessibleFrame() const override { return {10, 20, 100, 30}; }
    std::vector<AccessibleElement*> accessibleChildren() override
    {
        return {children.begin(), children.end()};
    }
    bool performAccessibleAction(std::size_t) override { return false; }
    bool setAccessibleText(std::string_view utf8) override
    {
        state.text->text = utf8;
        return true;
    }
    bool setAccessibleSelection(std::size_t start, std::size_t end) override
    {
        state.text->selectionStart = start;
        state.text->selectionEnd = state.text->caret = end;
        return true;
    }
    Rect accessibleTextFrame(std::size_t start, std::size_t end) const override
    {
        return {10.0 + static_cast<double>(start), 20, static_cast<double>(end - start), 12};
    }
    std::size_t accessibleOffsetAt(Point at) const override
    {
        return static_cast<std::size_t>(at.x - 10);
    }

    std::string id;
    AccessibleState state;
    std::vector<Element*> children;
};

/// On the screen at (200, 100), with two pixels to a point.
struct Surface : PlacedSurface {
    void setFrame(const Rect&) override { }
    Rect frame() const override { return {}; }
    void orderFront() override { }
    void orderOut() override { }
    void setCanBecomeKey(bool) override { }
    void makeKeyAndOrderFront() override { }
    bool isVisible() const override { return true; }
    double scale() const override { return 2; }
    void invalidate(const Rect&) override { }
    void setOpacity(double) override { }
    bool setBlursBehind(const std::optional<VisualEffect>&) override { return false; }
    Duration frameInterval() const override { return {}; }
    bool takeKeyboard() override { return false; }
    void releaseKeyboard() override { }
    void accessibleTreeDidChange() override { }
    Rect framePixels() const override { return {200, 100, 400, 300}; }
};

struct Client : SurfaceClient {
    explicit Client(Element& root_) : root(root_) { }
    void paint(Canvas&, const Rect&) override { }
    void pointerEvent(const PointerEvent&) override { }
    void pointerLost() override { }
    void scrollEvent(const ScrollEvent&) override { }
    void surfaceDidResize(Size) override { }
    AccessibleElement* accessibleRoot() override { return &root; }

    Element& root;
};

}

/// A launcher as assistive programs ask it, without a bus between.
class AccessibleObjects : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(atk) << "ATK and its bridge are not installed";
        field.state.text = AccessibleText{"Größe zwei", "Search", 4, 4, 4};
        field.state.hasKeyFocus = true;
        for (std::size_t i = 0; i < rows.size(); ++i)
            rows[i].state.position = AccessiblePosition{i, 40};
        list.children = {&rows[0], &rows[1]};
        rows[0].state.isSelected = true;
        root.children = {&field, &list};
        shown = surfaces.add(surface, client);
        application.emplace(*atk, surfaces);
    }

    /// The node of an element, made as for a program that walks down to it.
    AccessibleNode& nodeOf(std::size_t child)
    {
        return *application->children().front()->children()[child];
    }
    template <typename Interface> Interface& interfaceOf(const AccessibleNode& node, GType type)
    {
        return *static_cast<Interface*>(
            g_type_interface_peek(G_OBJECT_GET_CLASS(node.object()), type));
    }
    void listen(const AccessibleNode& node, const char* signal, GCallback callback)
    {
        g_signal_connect(node.object(), signal, callback, &heard);
    }
    std::vector<std::string> announced()
    {
        heard.clear();
        application->announceChanges();
        return heard;
    }
    static void onText(AtkObject*, int place, int length, const char* text, gpointer log)
    {
        static_cast<std::vector<std::string>*>(log)->push_back(
            std::to_string(place) + " " + std::to_string(length) + " " + text);
    }
    static void onCaret(AtkObject*, int place, gpointer log)
    {
        static_cast<std::vector<std::string>*>(log)->push_back("caret " + std::to_string(place));
    }
    static void onSelection(AtkObject*, gpointer log)
    {
        static_cast<std::vector<std::string>*>(log)->emplace_back("selection");
    }
    static void onDescendant(AtkObject*, AtkObject* child, gpointer log)
    {
        static_cast<std::vector<std::string>*>(log)->emplace_back(
            reinterpret_cast<AtkObjectClass*>(G_OBJECT_GET_CLASS(child))->get_name(child));
    }
    static void onState(AtkObject*, const char* state, gboolean isOn, gpointer log)
    {
        static_cast<std::vector<std::string>*>(log)->push_back(
            std::string{state} + (isOn ? " on" : " off"));
    }
    static std::string take(char* text)
    {
        const GText owner{text};
        return text ? text : "";
    }

    const AtkLibrary* atk = AtkLibrary::load();
    Element root{"launcher", AccessibleRole::panel, "Applications"};
    Element field{"field", AccessibleRole::textField, "Search"};
    Element list{"list", AccessibleRole::list, "Applications"};
    std::array<Element, 3> rows{Element{"a", AccessibleRole::listItem, "Calculator"},
        Element{"b", AccessibleRole::listItem, "Mail"},
        Element{"c", AccessibleRole::listItem, "Terminal"}};
    Surface surface;
    Client client{root};
    AccessibleSurfaces surfaces;
    Subscription shown;
    std::optional<AccessibleNode> application;
    std::vector<std::string> heard;
};

// Faults: a field without a text; places counted in bytes; a rectangle in points, or measured from
// elsewhere than was asked; a wrong place, or a field that has gone, that ends the program.
TEST_F(AccessibleObjects, readAndEditFieldsInCharacters)
{
    auto& node = nodeOf(0);
    EXPECT_EQ(node.role(), ATK_ROLE_ENTRY);
    EXPECT_TRUE(node.describe().has(ATK_STATE_EDITABLE) && node.describe().has(ATK_STATE_FOCUSED));
    auto* const text = reinterpret_cast<AtkText*>(node.object());
    const auto& reading = interfaceOf<AtkTextIface>(node, atk->textType());
    int start = 0, end = 0, x = 0, y = 0, width = 0, height = 0;
    EXPECT_EQ(take(reading.get_text(text, 0, -1)), "Größe zwei");
    EXPECT_EQ(reading.get_character_count(text), 10);
    EXPECT_EQ(reading.get_caret_offset(text), 3);
    EXPECT_EQ(take(reading.get_string_at_offset(text, 1, ATK_TEXT_GRANULARITY_WORD, &start, &end)),
        "Größe ");
    EXPECT_EQ(end, 6);
    EXPECT_EQ(take(reading.get_text_at_offset(text, 2, ATK_TEXT_BOUNDARY_CHAR, &start, &end)), "ö");
    EXPECT_EQ(
        take(reading.get_text_after_offset(text, 1, ATK_TEXT_BOUNDARY_WORD_START, &start, &end)),
        "zwei");
    reading.get_character_extents(text, 2, &x, &y, &width, &height, ATK_XY_SCREEN);
    EXPECT_EQ((std::array{x, y, width, height}), (std::array{224, 140, 4, 24}));
    reading.get_character_extents(text, 2, &x, &y, &width, &height, ATK_XY_WINDOW);
    EXPECT_EQ((std::array{x, y}), (std::array{24, 40}));
    EXPECT_EQ(reading.get_offset_at_point(text, 224, 140, ATK_XY_SCREEN), 2);

    EXPECT_TRUE(reading.set_caret_offset(text, 5));
    EXPECT_EQ(field.state.text->caret, 7U);
    EXPECT_TRUE(reading.add_selection(text, 0, 3));
    EXPECT_EQ(field.state.text->selectionEnd, 4U);
    EXPECT_EQ(take(reading.get_selection(text, 0, &start, &end)), "Grö");
    EXPECT_TRUE(reading.remove_selection(text, 0));
    EXPECT_EQ(reading.get_n_selections(text), 0);

    auto* const editable = reinterpret_cast<AtkEditableText*>(node.object());
    const auto& writing = interfaceOf<AtkEditableTextIface>(node, atk->editableTextType());
    int place = 5;
    writing.insert_text(editable, "öö", 4, &place);
    EXPECT_EQ(field.state.text->text, "Größeöö zwei");
    EXPECT_EQ(place, 7);
    writing.delete_text(editable, 5, 7);
    EXPECT_EQ(field.state.text->text, "Größe zwei");
    writing.set_text_contents(editable, "neu");
    EXPECT_EQ(take(reading.get_text(text, -3, 99)), "neu");
    EXPECT_EQ(reading.get_character_at_offset(text, 99), 0U);

    root.children = {&list};
    EXPECT_EQ(take(reading.get_text(text, 0, -1)), "");
    EXPECT_FALSE(reading.set_caret_offset(text, 1));
    writing.delete_text(editable, 0, 9);
    place = 999;
    writing.insert_text(editable, "x", -1, &place);
}

// Faults: a change that is told as another one, or of which nobody is told; a row that is chosen
// while the keyboard stays in the field, that comes into sight with the choice, or of whose list
// nobody has asked, and is not read; a field that had the keyboard before anybody looked.
TEST_F(AccessibleObjects, tellWhatIsTypedAndChosen)
{
    auto& node = nodeOf(0);
    auto& items = nodeOf(1);
    listen(node, "text-insert", G_CALLBACK(onText));
    listen(node, "text-remove", G_CALLBACK(onText));
    listen(node, "text-caret-moved", G_CALLBACK(onCaret));
    listen(node, "text-selection-changed", G_CALLBACK(onSelection));
    listen(node, "state-change::focused", G_CALLBACK(onState));
    listen(items, "active-descendant-changed", G_CALLBACK(onDescendant));
    EXPECT_EQ(announced(), (std::vector<std::string>{"focused on", "Calculator"}));

    field.state.text = AccessibleText{"Grüße zwei", "Search", 0, 0, 2};
    EXPECT_EQ(announced(), (std::vector<std::string>{"2 1 ö", "2 1 ü", "caret 0", "selection"}));
    field.state.text->text = "Grüße zwei!";
    EXPECT_EQ(announced(), std::vector<std::string>{"10 1 !"});

    EXPECT_EQ(items.role(), ATK_ROLE_LIST);
    rows[0].state.isSelected = false;
    rows[1].state.isSelected = true;
    EXPECT_EQ(announced(), std::vector<std::string>{"Mail"});
    rows[1].state.isSelected = false;
    rows[2].state.isSelected = true;
    list.children = {&rows[1], &rows[2]};
    EXPECT_EQ(announced(), std::vector<std::string>{"Terminal"});
    const auto& selection = interfaceOf<AtkSelectionIface>(items, atk->selectionType());
    auto* const selectable = reinterpret_cast<AtkSelection*>(items.object());
    EXPECT_EQ(selection.get_selection_count(selectable), 1);
    EXPECT_TRUE(selection.is_child_selected(selectable, 1));
    const GObjectHandle<AtkObject> chosen{selection.ref_selection(selectable, 0)};
    EXPECT_EQ(chosen.get(), items.children()[1]->object());
}

}
