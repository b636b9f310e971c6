#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

#include "Tests/Support/Sanitized.h"
#include "Tests/Support/Seed.h"
#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

namespace {

/// What the bar has done to windows for clicks, as its trace tells while it grows.
class Deeds {
public:
    explicit Deeds(const std::filesystem::path& trace) : m_trace(trace) { }

    /// The number of the window that the next click that did anything was for.
    std::optional<std::uint32_t> next()
    {
        std::string line;
        while (readLine(line)) {
            std::istringstream words(line);
            std::string time, verb, phase, number;
            words >> time >> verb >> phase >> number;
            const bool isDeed = verb == "activateWindow" || verb == "minimizeWindow";
            if (isDeed && phase == "begin" && number.starts_with("id="))
                return static_cast<std::uint32_t>(std::stoul(number.substr(3)));
        }
        return std::nullopt;
    }

private:
    /// A whole line; the bar may be in the middle of the last one.
    bool readLine(std::string& line)
    {
        m_trace.clear();
        const auto start = m_trace.tellg();
        if (std::getline(m_trace, line) && !m_trace.eof())
            return true;
        m_trace.clear();
        m_trace.seekg(start);
        return false;
    }

    std::ifstream m_trace;
};

/// The chip at that place in a row, if any.
std::string chipAt(const State& state, int x)
{
    for (const auto& chip : state.panel().chips) {
        if (x >= chip.frame.x && x < chip.frame.x + chip.frame.width)
            return chip.id;
    }
    return {};
}

int widthOf(const State::Chip& chip)
{
    return chip.frame.width;
}

bool hasChip(const State& state, const std::string& id)
{
    const auto chips = state.panel().chips;
    return std::ranges::find(chips, id, &State::Chip::id) != chips.end();
}

}

class ClicksUnderChurn : public UnderEachManager {
protected:
    static constexpr int kFewest = 4;
    static constexpr int kMost = 8;
    static constexpr int kClicksPerVisit = 12;

    ClicksUnderChurn()
    {
        std::ofstream(server.settingsFile())
            << R"({"groupWindowsByApp": false, "barSize": "small"})";
        for (int i = 0; i < kFewest; ++i)
            churn('o');
        bar = std::make_unique<Bar>(server, std::vector<std::string>{"--trace=" + trace.string()});
    }

    /// Returns at once: a window comes or the oldest goes while the test goes on.
    void churn(char order)
    {
        const bool opens = order == 'o';
        if (m_count == (opens ? kMost : kFewest) && bar)
            return;
        m_count += opens ? 1 : -1;
        client.order(order);
    }
    void churnAtRandom(unsigned choice)
    {
        if (choice < 2)
            churn(choice == 0 ? 'o' : 'c');
    }

    const std::filesystem::path trace = server.folder() / "trace";
    ClientProcess client{server, [](Client& own, char order) {
                             static int opened = 0;
                             if (order == 'o')
                                 own.open({.title = std::to_string(++opened)});
                             else
                                 own.destroy(own.windows().front());
                         }};
    std::unique_ptr<Bar> bar;

private:
    int m_count = 0;
};

// Faults: a chip that slides under the pointer between the look and the press, or between press and
// release; a click that falls on what took the place of a chip that has gone.
TEST_P(ClicksUnderChurn, reachTheChipThatWasUnderThePointer)
{
    ASSERT_TRUE(bar->appears());
    ASSERT_TRUE(client.finish());
    ASSERT_TRUE(settles(*bar));
    const auto seed = test::seed();
    // Of those that did something; with some of them the window goes first.
    const int clicks = std::getenv("QUORVEL_TEST_FULL") ? 400 : test::kIsSanitized ? 60 : 120;
    std::mt19937 random{seed};
    Deeds deeds(trace);
    int certain = 0;

    for (int click = 0; certain < clicks; ++click) {
        ASSERT_LT(click, clicks * 10) << certain << " did something";
        // Now and then the hand leaves the row, which closes its gaps then.
        if (click % kClicksPerVisit == 0)
            pointer.moveTo(5, 5);
        auto places = bar->state().panel().chips;
        // What is cut off at the row's end lies under an arrow.
        const auto whole = widthOf(std::ranges::max(places, {}, widthOf));
        std::erase_if(places, [&](const auto& chip) { return chip.frame.width < whole; });
        ASSERT_FALSE(places.empty());
        const auto& place = places[random() % places.size()].frame;
        // In its first half, for an arrow may cover the end of a row that is too long.
        const int x = place.x + static_cast<int>(random() % (1 + place.width / 2));
        pointer.moveTo(x, place.y + place.height / 2);
        static_cast<void>(bar->state()); // an answer that may be older than the motion
        const auto seen = bar->state();
        ASSERT_TRUE(seen.panel().isVisible);
        const auto wanted = chipAt(seen, x);
        if (wanted.empty())
            continue;
        while (deeds.next()) { }

        churnAtRandom(random() % 4);
        pointer.press(Button::primary);
        churnAtRandom(random() % 8);
        pointer.release(Button::primary);

        std::optional<std::uint32_t> deed;
        State after;
        const auto isDone = [&] {
            deed = deeds.next();
            return after = bar->state(), deed || !hasChip(after, wanted);
        };
        const auto tell = [&] {
            return "click " + std::to_string(click) + " at " + std::to_string(x) + " on " + wanted
                + ", before: " + testing::PrintToString(seen.panel().chips)
                + ", after: " + testing::PrintToString(after.panel().chips);
        };
        ASSERT_TRUE(eventually(isDone)) << tell();
        if (!deed)
            continue; // the window went first
        ++certain;
        ASSERT_EQ("s-" + std::to_string(*deed), wanted) << tell();
    }
    pointer.moveTo(5, 5);
    ASSERT_TRUE(client.finish());
    EXPECT_TRUE(settles(*bar));
}

QUORVEL_UNDER_EACH_MANAGER(ClicksUnderChurn);

}
