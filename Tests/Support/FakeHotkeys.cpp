#include "Tests/Support/FakeHotkeys.h"

#include <algorithm>
#include <utility>

namespace quorvel::test {

class FakeHotkeys::Entry final : public HotkeyRegistration {
public:
    Entry(FakeHotkeys& table, Keys wanted, HotkeyID name) : keys(wanted), id(name), m_table(table)
    {
        m_table.m_entries.push_back(this);
        isRegistered = !m_table.isTaken(keys, this);
    }
    ~Entry() override
    {
        std::erase(m_table.m_entries, this);
        m_table.settle();
    }
    HotkeyOutcome outcome() const override
    {
        return isRegistered ? HotkeyOutcome::registered : HotkeyOutcome::taken;
    }

    const Keys keys;
    const HotkeyID id;
    bool isRegistered = false;

private:
    FakeHotkeys& m_table;
};

/// Reported, but in nobody's table.
class FakeHotkeys::Held final : public HotkeyRegistration {
public:
    Held(FakeHotkeys& table, Keys wanted, HotkeyID name) : keys(wanted), id(name), m_table(table)
    {
        m_table.m_heldElsewhere.push_back(this);
    }
    ~Held() override { std::erase(m_table.m_heldElsewhere, this); }
    HotkeyOutcome outcome() const override { return HotkeyOutcome::taken; }

    const Keys keys;
    const HotkeyID id;

private:
    FakeHotkeys& m_table;
};

std::unique_ptr<HotkeyRegistration> FakeHotkeys::registerHeld(const HotkeyID& id)
{
    return m_heldDown ? std::make_unique<Held>(*this, *m_heldDown, id) : nullptr;
}

std::unique_ptr<HotkeyRegistration> FakeHotkeys::registerHotkey(
    std::uint32_t keyCode, std::uint32_t modifiers, const HotkeyID& id)
{
    ++m_registrations;
    return std::make_unique<Entry>(*this, Keys{keyCode, modifiers}, id);
}

bool FakeHotkeys::isTaken(Keys keys, const Entry* exception) const
{
    return std::ranges::find(m_elsewhere, keys) != m_elsewhere.end()
        || std::ranges::any_of(m_entries, [&](auto* entry) {
               return entry != exception && entry->isRegistered && entry->keys == keys;
           });
}

void FakeHotkeys::settle()
{
    bool hasChanged = false;
    for (auto* entry : m_entries) {
        bool isRegistered = !isTaken(entry->keys, entry);
        hasChanged |= std::exchange(entry->isRegistered, isRegistered) != isRegistered;
    }
    if (hasChanged)
        outcomesDidChange.emit();
}

void FakeHotkeys::takeElsewhere(Keys keys)
{
    m_elsewhere.push_back(keys);
}

void FakeHotkeys::giveBackElsewhere(Keys keys)
{
    std::erase(m_elsewhere, keys);
    settle();
}

bool FakeHotkeys::press(Keys keys)
{
    auto found = std::ranges::find_if(
        m_entries, [&](auto* entry) { return entry->isRegistered && entry->keys == keys; });
    if (found != m_entries.end())
        return ask((*found)->id) == HotkeyStatus::handled;
    auto held = std::ranges::find(m_heldElsewhere, keys, [](auto* entry) { return entry->keys; });
    return held != m_heldElsewhere.end() && ask((*held)->id) == HotkeyStatus::handled;
}

std::vector<FakeHotkeys::Keys> FakeHotkeys::registered() const
{
    std::vector<Keys> keys;
    for (auto* entry : m_entries) {
        if (entry->isRegistered)
            keys.push_back(entry->keys);
    }
    return keys;
}

}
