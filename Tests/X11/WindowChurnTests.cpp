#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

namespace {

unsigned seedOfThisRun()
{
    const char* const given = std::getenv("QUORVEL_TEST_SEED");
    const unsigned seed = given ? static_cast<unsigned>(std::atoi(given)) : std::random_device{}();
    std::cout << "QUORVEL_TEST_SEED=" << seed << std::endl;
    return seed;
}

enum class Deed { open, retitle, minimise, restore, move, close };

/// What happens to one terminal, in order.
struct Plan {
    std::string title;
    std::vector<Deed> deeds; ///< the next one last
    std::unique_ptr<Terminal> terminal;
};

/// A user who opens terminals and does everything with them, in random order. Each step returns
/// when the window manager has done it.
class RandomUser {
public:
    RandomUser(DesktopFixture& fixture, int terminals, unsigned seed)
        : m_fixture(fixture)
        , m_random(seed)
    {
        for (int i = 0; i < terminals; ++i)
            m_plans.push_back({"terminal " + std::to_string(i), plan(), nullptr});
    }

    bool isDone() const { return m_plans.empty(); }

    /// Says what it did.
    std::string step()
    {
        auto& plan = m_plans[m_random() % m_plans.size()];
        const auto deed = plan.deeds.back();
        plan.deeds.pop_back();
        const auto title = plan.title;
        const bool happened = perform(deed, plan);
        EXPECT_TRUE(happened) << "the window manager did not do it";
        std::erase_if(m_plans, [](const auto& candidate) { return candidate.deeds.empty(); });
        return names()[static_cast<std::size_t>(deed)] + " " + title;
    }

private:
    static std::vector<std::string> names()
    {
        return {"open", "retitle", "minimise", "restore", "move", "close"};
    }

    std::vector<Deed> plan()
    {
        std::vector<Deed> deeds{Deed::retitle, Deed::minimise, Deed::restore, Deed::move};
        std::shuffle(deeds.begin(), deeds.end(), m_random);
        const auto minimise = std::find(deeds.begin(), deeds.end(), Deed::minimise);
        const auto restore = std::find(deeds.begin(), deeds.end(), Deed::restore);
        if (minimise < restore) // the last is the next
            std::iter_swap(minimise, restore);
        deeds.insert(deeds.begin(), Deed::close);
        deeds.push_back(Deed::open);
        return deeds;
    }

    template <typename Condition> static bool happens(Condition condition)
    {
        return static_cast<bool>(eventually(5s, condition));
    }

    bool perform(Deed deed, Plan& plan)
    {
        switch (deed) {
        case Deed::open:
            plan.terminal
                = std::make_unique<Terminal>(m_fixture.server, m_fixture.desktop, plan.title);
            return true;
        case Deed::retitle:
            return retitle(*plan.terminal, plan.title + " retitled");
        case Deed::minimise:
            return minimise(plan.terminal->window());
        case Deed::restore:
            return restore(plan.terminal->window());
        case Deed::move:
            return move(plan.terminal->window());
        case Deed::close:
            return close(*plan.terminal);
        }
        return false;
    }

    bool retitle(const Terminal& terminal, const std::string& title)
    {
        terminal.setTitle(title);
        return happens([&] { return desktop().title(terminal.window()) == title; });
    }

    /// openbox minimises nothing that is on another desktop.
    bool goTo(xcb_window_t window)
    {
        const auto home = desktop().desktopOf(window).value_or(0);
        desktop().switchTo(home);
        return happens([&] { return desktop().currentDesktop() == home; });
    }

    bool minimise(xcb_window_t window)
    {
        if (!goTo(window))
            return false;
        desktop().minimise(window);
        return happens([&] { return desktop().isHidden(window); });
    }

    bool restore(xcb_window_t window)
    {
        if (!goTo(window))
            return false;
        desktop().activate(window);
        return happens(
            [&] { return !desktop().isHidden(window) && desktop().activeWindow() == window; });
    }

    bool move(xcb_window_t window)
    {
        const auto target = (desktop().desktopOf(window).value_or(0) + 1) % 4;
        desktop().moveToDesktop(window, target);
        return happens([&] { return desktop().desktopOf(window) == target; });
    }

    bool close(Terminal& terminal)
    {
        desktop().close(terminal.window());
        return happens([&] {
            const auto clients = desktop().clients();
            return !terminal.isRunning()
                && std::find(clients.begin(), clients.end(), terminal.window()) == clients.end();
        });
    }

    Desktop& desktop() { return m_fixture.desktop; }

    DesktopFixture& m_fixture;
    std::mt19937 m_random;
    std::vector<Plan> m_plans;
};

int terminalsOfThisRun()
{
    return std::getenv("QUORVEL_TEST_FULL") ? 100 : 20;
}

}

class WindowChurn : public UnderEachManager { };

// Faults: a missed event, a stale title, a chip on the wrong space, a focus that lags or sticks.
TEST_P(WindowChurn, theBarAgreesWithTheDesktopWithinASecondOfEachStep)
{
    const auto seed = seedOfThisRun();
    Bar bar(server);
    ASSERT_TRUE(bar.appears());

    RandomUser user(*this, terminalsOfThisRun(), seed);
    while (!user.isDone()) {
        const auto step = user.step();
        ASSERT_TRUE(bar.agreesWith(desktop, 1s)) << "after: " << step;
    }
}

QUORVEL_UNDER_EACH_MANAGER(WindowChurn);

}
