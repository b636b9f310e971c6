// A desktop on which everything happens at random. When it has settled, the bar must say what the
// server says. QUORVEL_TEST_SEED repeats a run, QUORVEL_TEST_ROUNDS and QUORVEL_TEST_FULL make more
// of them.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "Tests/Support/Seed.h"
#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

namespace {

constexpr int kStepsOfARound = 200;
constexpr int kRoundsOfAFullRun = 10;
constexpr std::size_t kMostApplications = 6;
constexpr std::size_t kMostWindows = 25;
const std::string kClass = "Churn";

class Chance {
public:
    explicit Chance(unsigned seed) : m_random(seed) { }

    std::size_t below(std::size_t limit) { return m_random() % limit; }
    bool oneIn(std::size_t count) { return below(count) == 0; }
    unsigned seed() { return static_cast<unsigned>(m_random()); }
    template <typename List> const auto& from(const List& list) { return list[below(list.size())]; }

private:
    std::mt19937 m_random;
};

/// Applications: what they do to their own windows, each in its process.
class RandomApplication {
public:
    static constexpr std::array kOrders{'o', 'o', 'o', 'o', 't', 't', 'p', 'p', 'k', 'k', 'd'};

    RandomApplication(std::size_t name, unsigned seed)
        : m_name(kClass + std::to_string(name))
        , m_chance(seed)
    {
    }

    void operator()(Client& client, char order)
    {
        if (order == 'o')
            return open(client);
        if (client.windows().empty())
            return;
        const auto window = m_chance.from(client.windows());
        if (order == 't')
            client.setTitle(window, title());
        else if (order == 'p')
            client.place(window, frame());
        else if (order == 'k')
            changeKind(client, window);
        else if (order == 'd')
            client.destroy(window);
    }

private:
    std::string title() { return m_name + " title " + std::to_string(m_chance.below(1000)); }
    Frame frame()
    {
        const auto at = [this](int least, std::size_t more) {
            return least + static_cast<int>(m_chance.below(more));
        };
        // Some are on the edge of what a taskbar shows.
        if (m_chance.oneIn(4))
            return {at(0, 800), at(0, 500), at(36, 8), at(36, 8)};
        return {at(0, 800), at(0, 500), at(50, 400), at(50, 200)};
    }
    std::string type()
    {
        const std::array names{"NORMAL", "NORMAL", "DIALOG", "UTILITY", "SPLASH", "DOCK"};
        return std::string("_NET_WM_WINDOW_TYPE_") + m_chance.from(names);
    }

    void open(Client& client)
    {
        WindowOptions options{.title = title(),
            .applicationClass = m_name + (m_chance.oneIn(4) ? "b" : "a"),
            .frame = frame(),
            .isDecorated = !m_chance.oneIn(4),
            .answersClose = true};
        if (m_chance.oneIn(2))
            options.type = type();
        if (m_chance.oneIn(8))
            options.state = "_NET_WM_STATE_SKIP_TASKBAR";
        if (m_chance.oneIn(4) && !client.windows().empty())
            options.parent = m_chance.from(client.windows());
        client.open(options);
    }

    void changeKind(Client& client, xcb_window_t window)
    {
        if (m_chance.oneIn(2))
            return client.setType(window, type());
        // Parents are older than their dialogs, so none is its own ancestor.
        const auto parent = m_chance.from(client.windows());
        client.setParent(window, parent < window ? parent : XCB_NONE);
    }

    std::string m_name;
    Chance m_chance;
};

/// Applications, and a user who does everything with them. Nothing waits for anything.
class RandomDesktop {
public:
    RandomDesktop(DesktopFixture& fixture, unsigned seed) : m_fixture(fixture), m_chance(seed) { }

    /// Says what it did.
    std::string step()
    {
        const auto choice = m_chance.below(20);
        if (m_applications.size() < 2 || (choice == 0 && m_applications.size() < kMostApplications))
            return launch();
        if (choice < 3)
            return changeProcess(m_chance.below(m_applications.size()));
        if (choice < 12)
            return order(m_chance.from(m_applications));
        if (choice == 12)
            return switchDesktop();
        const auto windows = this->windows();
        return windows.empty() ? "nothing" : request(m_chance.from(windows));
    }

    /// Lets stopped applications go on and waits until everything has been done that was begun.
    void settle()
    {
        std::erase_if(m_applications, [](const auto& application) {
            application->resume();
            return !application->finish();
        });
        EXPECT_TRUE(desktop().finishRequests());
    }

    void endAll() { m_applications.clear(); }

private:
    using Application = std::unique_ptr<ClientProcess>;

    Desktop& desktop() { return m_fixture.desktop; }

    std::vector<xcb_window_t> windows()
    {
        auto windows = desktop().clients();
        std::erase_if(windows, [this](xcb_window_t window) {
            return !desktop().applicationClass(window).starts_with(kClass);
        });
        return windows;
    }

    std::string launch()
    {
        // Some have the class of another: several processes of one application.
        m_applications.push_back(std::make_unique<ClientProcess>(
            m_fixture.server, RandomApplication(m_chance.below(4), m_chance.seed())));
        m_applications.back()->order('o');
        return "launch";
    }

    std::string changeProcess(std::size_t index)
    {
        const auto& application = m_applications[index];
        const auto process = std::to_string(application->pid());
        if (m_chance.oneIn(6)) {
            m_applications.erase(m_applications.begin() + static_cast<std::ptrdiff_t>(index));
            return "kill " + process;
        }
        if (m_chance.oneIn(2)) {
            application->resume();
            return "resume " + process;
        }
        application->stop();
        return "stop " + process;
    }

    std::string order(const Application& application)
    {
        auto order = m_chance.from(RandomApplication::kOrders);
        if (order == 'o' && desktop().clients().size() > kMostWindows)
            order = 'd';
        application->order(order);
        return std::string("order ") + order + " to " + std::to_string(application->pid());
    }

    std::string switchDesktop()
    {
        const auto target = static_cast<std::uint32_t>(m_chance.below(4));
        desktop().switchTo(target);
        return "switch to " + std::to_string(target);
    }

    std::string moveToDesktop(xcb_window_t window)
    {
        const auto target = static_cast<std::uint32_t>(m_chance.below(5));
        desktop().moveToDesktop(window, target == 4 ? kAllDesktops : target);
        return "move to " + std::to_string(target) + ' ' + desktop().title(window);
    }

    std::string setState(xcb_window_t window, const std::string& state)
    {
        const bool isOn = m_chance.oneIn(2);
        desktop().setState(window, state, isOn);
        return state + (isOn ? " on " : " off ") + desktop().title(window);
    }

    std::string request(xcb_window_t window)
    {
        const auto title = desktop().title(window);
        switch (m_chance.below(8)) {
        case 0:
            desktop().close(window);
            return "close " + title;
        case 1:
        case 2:
            desktop().minimise(window);
            return "minimise " + title;
        case 3:
        case 4:
            desktop().activate(window);
            return "activate " + title;
        case 5:
            return setState(window, "SKIP_TASKBAR");
        case 6:
            return setState(window, "MODAL");
        default:
            return moveToDesktop(window);
        }
    }

    DesktopFixture& m_fixture;
    Chance m_chance;
    std::vector<Application> m_applications;
};

}

class WindowChurn : public BarUnderEachManager {
protected:
    /// So many steps, and a rest after each few.
    void run(RandomDesktop& random, Chance& chance)
    {
        std::string done;
        for (int left = kStepsOfARound; left > 0 && !HasFailure();) {
            for (auto few = 1 + chance.below(12); few > 0 && left > 0; --few, --left)
                done += random.step() + '\n';
            random.settle();
            ASSERT_TRUE(bar.agreesWith(desktop)) << "after:\n" << done;
            done.clear();
        }
    }
};

// Faults: a missed event, a stale title, a chip on the wrong space, a window judged once and for
// all or again only when something else happens to it, a focus that lags or sticks, a window of a
// killed or stopped application that stays or stays away.
TEST_P(WindowChurn, whenTheDesktopRestsTheBarSaysWhatTheServerSays)
{
    auto seed = test::seed();
    const auto rounds = test::numberFrom(
        "QUORVEL_TEST_ROUNDS", std::getenv("QUORVEL_TEST_FULL") ? kRoundsOfAFullRun : 1);
    std::cout << "seed " << seed << ", " << rounds << " rounds" << std::endl;
    for (unsigned round = 0; round < rounds && !HasFailure(); ++round, ++seed) {
        SCOPED_TRACE("QUORVEL_TEST_SEED=" + std::to_string(seed));
        RandomDesktop random(*this, seed);
        Chance chance(seed);
        run(random, chance);
        random.endAll();
        EXPECT_TRUE(bar.agreesWith(desktop)) << "when all had ended";
    }
}

QUORVEL_UNDER_EACH_MANAGER(WindowChurn);

}
