#include <cstdlib>

#include <gtest/gtest.h>

#include "Tests/X11/Support/InputMethodServer.h"
#include "Tests/X11/Support/Keyboard.h"
#include "Tests/X11/Support/SurfaceHost.h"

namespace quorvel::x11tests {

namespace {

/// By place.
enum Key : std::uint8_t { k = 45, a = 38, e = 26, space = 65 };

}

/// A user with an input method types into a surface of ours.
class InputMethods : public testing::TestWithParam<const char*> {
protected:
    void start()
    {
        method = std::make_unique<InputMethodServer>(server.display(), GetParam());
        method->uses[k] = [this] { method->compose("かき", 1); };
        method->uses[space] = [this] {
            method->compose("", 0);
            method->commit("柿");
        };
    }
    void show()
    {
        panel->setFrame({100, 600, 200, 100});
        panel->makeKeyAndOrderFront();
        ASSERT_TRUE(record.hasKeyboard);
    }
    template <typename Condition> bool serveUntil(Condition condition)
    {
        return surfaces.host.runUntil([&] {
            if (method)
                method->serve();
            return condition();
        });
    }

    XServer server;
    Keyboard hand{server.display()};
    std::unique_ptr<InputMethodServer> method;
    SurfaceHost surfaces{server, {{"XMODIFIERS", "@im=sample"}}};
    SurfaceRecord record;
    std::unique_ptr<PanelSurface> panel = surfaces.make(PanelKind::launcher, record);
};

// Faults: texts in the other encoding; a caret that counts in other units; a place that is not the
// caret's; a key that it returns is lost, or overtakes another; what it says of a composition that
// the field has settled; one that is shown on, or asked for keys, while a menu has them.
TEST_P(InputMethods, composeCommitAndReturnKeys)
{
    start();
    show();
    ASSERT_TRUE(serveUntil([&] { return method->hasFocus(); }));
    EXPECT_EQ(method->spot().x, 120);
    EXPECT_EQ(method->spot().y, 800 - 700 + 24);

    hand.tap(k);
    EXPECT_TRUE(serveUntil([&] { return record.field.composition == "かき"; }));
    EXPECT_EQ(record.field.compositionCaret, std::string{"か"}.size());
    hand.tap(space);
    hand.tap(a);
    hand.tap(e);
    EXPECT_TRUE(serveUntil([&] { return record.field.text == "柿ae"; })) << record.field.text;
    EXPECT_EQ(record.field.composition, "");

    hand.tap(k);
    EXPECT_TRUE(serveUntil([&] { return !record.field.composition.empty(); }));
    record.field.composition.clear();
    panel->forgetComposition();
    method->commit("late");
    hand.tap(a);
    EXPECT_TRUE(serveUntil([&] { return record.field.text == "柿aea"; })) << record.field.text;
    EXPECT_EQ(method->contexts(), 2);

    SurfaceRecord entries;
    entries.hasField = false;
    const auto menu = surfaces.make(PanelKind::menu, entries);
    menu->setFrame({0, 0, 50, 50});
    menu->orderFront();
    hand.tap(k);
    ASSERT_TRUE(serveUntil([&] { return !record.field.composition.empty(); }));
    ASSERT_TRUE(menu->grabInput());
    const auto heard = method->keys().size();
    hand.tap(k);
    EXPECT_TRUE(serveUntil([&] { return !entries.keys.empty(); }));
    EXPECT_EQ(method->keys().size(), heard);
    menu->orderOut();
    EXPECT_EQ(record.field.composition, "");
    hand.tap(e);
    EXPECT_TRUE(serveUntil([&] { return record.field.text == "柿aeae"; })) << record.field.text;
}

// Faults: a key that waits for ever for one that hangs, or that has died, or that does not exist;
// keys that come back in another order, or twice, when it goes on; a composition that nobody ends;
// one that comes to life again and is not used.
TEST_P(InputMethods, mayHangAndDie)
{
    show();
    hand.tap(a);
    EXPECT_TRUE(serveUntil([&] { return record.field.text == "a"; }));
    panel->orderOut();
    start();
    show();
    ASSERT_TRUE(serveUntil([&] { return method->hasFocus(); }));
    hand.tap(k);
    EXPECT_TRUE(serveUntil([&] { return !record.field.composition.empty(); }));
    auto hung = std::move(method);
    hand.tap(e);
    hand.tap(a);
    EXPECT_TRUE(serveUntil([&] { return record.field.text == "aea"; })) << record.field.text;
    EXPECT_EQ(record.field.composition, "");
    hung->serve();
    hand.tap(e);
    EXPECT_TRUE(serveUntil([&] { return record.field.text == "aeae"; })) << record.field.text;
    hung.reset();

    panel->orderOut();
    start();
    show();
    ASSERT_TRUE(serveUntil([&] { return method->hasFocus(); }));
    hand.tap(k);
    EXPECT_TRUE(serveUntil([&] { return !record.field.composition.empty(); }));
    method.reset();
    EXPECT_TRUE(serveUntil([&] { return record.field.composition.empty(); }));
    hand.tap(a);
    EXPECT_TRUE(serveUntil([&] { return record.field.text == "aeaea"; })) << record.field.text;
}

INSTANTIATE_TEST_SUITE_P(, InputMethods, testing::Values("UTF8_STRING", "COMPOUND_TEXT"));

}
