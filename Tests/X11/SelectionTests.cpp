#include <cstring>

#include <gtest/gtest.h>

#include "Tests/X11/Support/SelectionPeer.h"
#include "Tests/X11/Support/SurfaceHost.h"

namespace quorvel::x11tests {

/// Texts that go between the host and another program.
class Selections : public testing::Test {
protected:
    bool serveUntil(const std::function<bool()>& condition)
    {
        return surfaces.host.runUntil([&] {
            peer.serve();
            return condition();
        });
    }
    void offer(ClipboardKind kind, const std::string& text)
    {
        const auto* const name = kind == ClipboardKind::clipboard ? "CLIPBOARD" : "PRIMARY";
        clipboard.setText(kind, text);
        ASSERT_TRUE(serveUntil([&] { return peer.ownerOf(name) != XCB_NONE; }));
    }
    /// What the other program gets.
    std::optional<std::string> givenAs(
        const std::string& format, const std::string& selection = "CLIPBOARD")
    {
        peer.request(selection, format);
        EXPECT_TRUE(serveUntil([&] { return peer.hasAnswer(); }));
        return peer.answer();
    }
    /// What the host gets.
    std::optional<std::string> taken(ClipboardKind kind = ClipboardKind::clipboard)
    {
        bool hasAnswer = false;
        std::optional<std::string> answer;
        clipboard.requestText(kind, [&](std::optional<std::string> text) {
            hasAnswer = true;
            answer = std::move(text);
        });
        EXPECT_TRUE(serveUntil([&] { return hasAnswer; }));
        return answer;
    }
    static std::string longText(std::size_t size)
    {
        std::string text;
        while (text.size() < size)
            text += "line " + std::to_string(text.size()) + "\n";
        return text;
    }

    XServer server;
    SelectionPeer peer{server.display()};
    SurfaceHost surfaces{server};
    Clipboard& clipboard = *surfaces.surfaces.clipboard();
};

// Faults: a format that others ask for is missing, or another than it says; one selection's text in
// the other; a large text cut off, or mixed with the next one; a program that dies on the way, and
// takes what others ask for along; an own text that the program itself cannot take.
TEST_F(Selections, giveTextsInTheUsualFormatsWhateverTheirLength)
{
    offer(ClipboardKind::clipboard, "Größe €");
    offer(ClipboardKind::primary, "selected");
    EXPECT_EQ(givenAs("UTF8_STRING"), "Größe €");
    EXPECT_EQ(givenAs("text/plain;charset=utf-8"), "Größe €");
    EXPECT_EQ(givenAs("STRING"),
        "Gr\xF6\xDF"
        "e ?");
    EXPECT_EQ(givenAs("UTF8_STRING", "PRIMARY"), "selected");
    EXPECT_EQ(givenAs("image/png"), std::nullopt);
    const auto targets = givenAs("TARGETS").value_or("");
    EXPECT_GE(targets.size() / sizeof(xcb_atom_t), 6U);
    xcb_timestamp_t time = 0;
    std::memcpy(&time, givenAs("TIMESTAMP").value_or("1234").data(), sizeof time);
    EXPECT_NE(time, 0U);
    peer.requestSeveral("CLIPBOARD", {"UTF8_STRING", "image/png", "STRING"});
    ASSERT_TRUE(serveUntil([&] { return peer.hasAnswer(); }));
    EXPECT_EQ(peer.partOfAnswer(0), "Größe €");
    EXPECT_EQ(peer.partOfAnswer(1), "");
    EXPECT_NE(peer.partOfAnswer(2), "");

    const auto text = longText(3'000'000);
    offer(ClipboardKind::clipboard, text);
    EXPECT_TRUE(givenAs("UTF8_STRING") == text);
    EXPECT_TRUE(taken() == text);
    auto dying = std::make_unique<SelectionPeer>(server.display());
    dying->request("CLIPBOARD", "UTF8_STRING");
    peer.request("CLIPBOARD", "UTF8_STRING");
    for (int turn = 0; turn < 5; ++turn) {
        g_main_context_iteration(nullptr, false);
        dying->serve();
        peer.serve();
    }
    clipboard.setText(ClipboardKind::clipboard, "new");
    dying.reset();
    EXPECT_TRUE(serveUntil([&] { return peer.hasAnswer(); }));
    EXPECT_TRUE(peer.answer() == text || peer.answer() == "new");
    EXPECT_TRUE(serveUntil([&] { return givenAs("UTF8_STRING") == "new"; }));

    peer.own("CLIPBOARD", {{"UTF8_STRING", "theirs"}});
    EXPECT_EQ(taken(), "theirs");
    EXPECT_EQ(givenAs("UTF8_STRING", "PRIMARY"), "selected");
}

// Faults: a text in an older format, or in pieces, that is not taken, or not whole; bytes that are
// no text taken as one; an owner that does not answer, stops half-way or never comes to an end, and
// keeps the main loop, or the memory.
TEST_F(Selections, takeTextsOfOwnersOfEveryKind)
{
    EXPECT_EQ(taken(), std::nullopt);
    peer.own("CLIPBOARD", {{"UTF8_STRING", "Größe"}, {"STRING", "other"}});
    EXPECT_EQ(taken(), "Größe");
    EXPECT_EQ(taken(ClipboardKind::primary), std::nullopt);
    peer.own("CLIPBOARD",
        {{"STRING",
            "Gr\xF6\xDF"
            "e"}});
    EXPECT_EQ(taken(), "Größe");
    peer.own("CLIPBOARD", {{"text/plain;charset=utf-8", std::string{"counted\0", 8}}});
    EXPECT_EQ(taken(), "counted");
    peer.own("CLIPBOARD", {{"UTF8_STRING", "bad \xFF byte"}});
    EXPECT_EQ(taken(), "bad \uFFFD byte");
    const auto text = longText(3'000'000);
    peer.own("CLIPBOARD", {{"UTF8_STRING", text}});
    EXPECT_TRUE(taken() == text);

    peer.mostPieces = 3;
    EXPECT_EQ(taken(), std::nullopt);
    peer.mostPieces = SIZE_MAX;
    peer.piece = 1 << 20;
    peer.own("CLIPBOARD", {{"UTF8_STRING", longText(17'000'000)}});
    EXPECT_EQ(taken(), std::nullopt);

    SelectionPeer hung{server.display()};
    hung.own("CLIPBOARD", {{"UTF8_STRING", "never"}});
    int answers = 0;
    for (int i = 0; i < 20; ++i) {
        clipboard.requestText(ClipboardKind::clipboard, [&](const auto& answer) {
            ++answers;
            EXPECT_EQ(answer, std::nullopt);
        });
    }
    EXPECT_TRUE(serveUntil([&] { return answers == 20; }));
}

}
