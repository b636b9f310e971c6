#include <filesystem>
#include <fstream>

#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/FileDrag.h"

namespace quorvel::x11tests {

class FileDrops : public UnderEachManager {
protected:
    /// An application that writes down what it is to open, and is pinned.
    FileDrops()
    {
        const auto program = server.addProgram("opener",
            "cd '" + server.folder().string()
                + "'; printf '%s\\n' \"$@\" >> opened.part; mv opened.part opened");
        server.addApplication("opener", "Opener", "Exec=" + program + " %F");
        std::ofstream(server.settingsFile())
            << R"({"groupWindowsByApp": false, "pinnedApps": [{"id": "opener", "d": 1}]})";
    }

    FileDrag::Options offering(std::vector<std::string> types) const
    {
        FileDrag::Options options;
        options.types = std::move(types);
        return options;
    }
    /// No files, too many, in pieces, never handed over, and offered as something else.
    std::vector<std::pair<std::string, FileDrag::Options>> refused() const
    {
        std::string endless;
        while (endless.size() < 300'000)
            endless += "file:///tmp/a\r\n";
        FileDrag::Options inPieces;
        inPieces.isInPieces = true;
        FileDrag::Options silent;
        silent.answers = false;
        return {{"http://example.org/a\r\n", {}}, {endless, {}}, {list, inPieces}, {list, silent},
            {list, offering({"text/plain", "text/html", "STRING", "TEXT"})}};
    }

    const std::filesystem::path opened = server.folder() / "opened";
    const std::string list = "file:///tmp/a%20b\r\nhttp://example.org/\r\nfile:///tmp/c\r\n";
    Client client{server};
};

// Faults: a source that gets no answer, or another's; a window that does not come to the front; a
// file that is opened under another name, twice or not at all; a mark that a dead source leaves; a
// bar that waits for a source, that takes half a list, or that opens what is no file.
TEST_P(FileDrops, restOnChipsAndOpenWithPins)
{
    const auto first = client.open({.title = "first"});
    const auto second = client.open({.title = "second"});
    Bar bar(server);
    ASSERT_TRUE(bar.appears());
    ASSERT_TRUE(eventually([&] { return desktop.taskbarClients().size() == 2; }));
    ASSERT_TRUE(eventually(desktop.activation(second)));
    ASSERT_TRUE(settles(bar));
    const auto state = bar.state();
    ASSERT_EQ(state.panel().pins.size(), 1u);
    const auto pin = state.panel().pins[0].frame;
    const Frame face{
        pin.x, pin.y + pin.height / 2, 8, 2}; // without the icon, which comes when it is drawn
    const auto atRest = desktop.picture(face);

    FileDrag files(server.display(), list);
    EXPECT_EQ(files.moveTo(state.chipFrame(first)), false);
    EXPECT_TRUE(becomesActive(first));
    EXPECT_EQ(files.moveTo(pin), true);
    EXPECT_EQ(files.drop(), true);
    EXPECT_TRUE(eventually([&] { return readFile(opened) == "/tmp/a b\n/tmp/c\n"; }))
        << readFile(opened);

    EXPECT_TRUE(eventually([&] { return desktop.picture(face) == atRest; }));
    {
        FileDrag dying(server.display(), list);
        EXPECT_EQ(dying.moveTo(pin), true);
        EXPECT_TRUE(eventually([&] { return desktop.picture(face) != atRest; }));
    }
    EXPECT_TRUE(eventually([&] { return desktop.picture(face) == atRest; }));

    std::filesystem::remove(opened);
    for (const auto& [text, options] : refused()) {
        FileDrag other(server.display(), text, options);
        EXPECT_TRUE(other.moveTo(pin).has_value());
        EXPECT_EQ(other.drop(), false) << text.substr(0, 80);
    }
    EXPECT_FALSE(std::filesystem::exists(opened));

    FileDrag many(
        server.display(), list, offering({"text/plain", "text/html", "STRING", "text/uri-list"}));
    EXPECT_EQ(many.moveTo(pin), true);
    EXPECT_EQ(many.moveTo(state.panel().showDesktop), false);
    EXPECT_EQ(many.moveTo(pin), true);
    EXPECT_EQ(many.drop(), true);
    EXPECT_TRUE(bar.agreesWith(desktop));
}

QUORVEL_UNDER_EACH_MANAGER(FileDrops);

}
