#include "Quorvel/Core/WindowAssignment.h"

#include <array>
#include <map>
#include <string>

namespace quorvel {

namespace {

struct Likeness {
    bool ofRole = false;
    bool ofTitle = false;
};

constexpr std::array<Likeness, 4> kBestFirst{{{true, true}, {false, true}, {true, false}, {}}};

std::string keyOf(const RememberedWindow& window, Likeness likeness)
{
    auto key = window.application;
    if (likeness.ofRole)
        key += '\n' + window.role;
    if (likeness.ofTitle)
        key += '\n' + window.title;
    return key;
}

class Assignment {
public:
    Assignment(
        const std::vector<const RememberedWindow*>& places, const std::vector<PlaceSeeker>& seekers)
        : m_places(places)
        , m_seekers(seekers)
        , m_isTaken(places.size())
        , m_answers(seekers.size())
    {
    }

    /// Leaves those where they are that are like their place.
    void keep(Likeness likeness)
    {
        for (std::size_t i = 0; i < m_seekers.size(); ++i) {
            auto current = m_seekers[i].current;
            if (!m_answers[i] && current && !m_isTaken[*current]
                && keyOf(*m_places[*current], likeness) == keyOf(m_seekers[i].window, likeness))
                take(i, *current);
        }
    }

    void give(Likeness likeness)
    {
        std::map<std::string, std::vector<std::size_t>> free; // the first one last
        for (auto place = m_places.size(); place-- > 0;) {
            if (!m_isTaken[place])
                free[keyOf(*m_places[place], likeness)].push_back(place);
        }
        for (std::size_t i = 0; i < m_seekers.size(); ++i) {
            if (m_answers[i])
                continue;
            auto found = free.find(keyOf(m_seekers[i].window, likeness));
            if (found == free.end() || found->second.empty())
                continue;
            take(i, found->second.back());
            found->second.pop_back();
        }
    }

    std::vector<std::optional<std::size_t>> take() && { return std::move(m_answers); }

private:
    void take(std::size_t seeker, std::size_t place)
    {
        m_answers[seeker] = place;
        m_isTaken[place] = true;
    }

    const std::vector<const RememberedWindow*>& m_places;
    const std::vector<PlaceSeeker>& m_seekers;
    std::vector<bool> m_isTaken;
    std::vector<std::optional<std::size_t>> m_answers;
};

}

std::vector<std::optional<std::size_t>> assignPlaces(
    const std::vector<const RememberedWindow*>& places, const std::vector<PlaceSeeker>& seekers)
{
    Assignment assignment{places, seekers};
    for (auto likeness : kBestFirst) {
        assignment.keep(likeness);
        assignment.give(likeness);
    }
    return std::move(assignment).take();
}

}
