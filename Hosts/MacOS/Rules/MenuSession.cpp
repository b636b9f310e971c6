#include "Hosts/MacOS/Rules/MenuSession.h"

#include <utility>

namespace quorvel {

MenuSession::MenuSession(Queue& mainQueue, std::function<void(MenuEnding)> onClosed)
    : m_mainQueue(mainQueue)
    , m_onClosed(std::move(onClosed))
{
}

std::size_t MenuSession::add(Work action)
{
    m_actions.push_back(std::move(action));
    return m_actions.size() - 1;
}

void MenuSession::run(const Show& show, Cancel cancel)
{
    if (m_isCancelled)
        return;
    m_cancel = std::move(cancel);
    const auto ending = show();
    m_cancel = nullptr;
    close(m_isCancelled ? MenuEnding::dismissed : ending);
    if (const auto next = std::exchange(m_next, nullptr))
        next();
}

MenuEnding MenuSession::endingOf(bool isChosen, std::uint64_t currentEventType)
{
    if (isChosen)
        return MenuEnding::chosen;
    return currentEventType == kKeyDown ? MenuEnding::escaped : MenuEnding::dismissed;
}

void MenuSession::choose(std::size_t entry)
{
    if (m_isCancelled || entry >= m_actions.size() || !m_actions[entry])
        return;
    if (m_hasClosed)
        m_mainQueue.async(m_actions[entry]);
    else
        m_chosen = m_actions[entry];
}

void MenuSession::cancel()
{
    m_isCancelled = true;
    m_chosen = nullptr;
    if (m_cancel)
        m_cancel();
    else
        close(MenuEnding::dismissed);
}

/// The action comes after everything that the end of the menu brings about.
void MenuSession::close(MenuEnding ending)
{
    if (std::exchange(m_hasClosed, true))
        return;
    if (m_onClosed)
        m_mainQueue.async([onClosed = std::move(m_onClosed), ending] { onClosed(ending); });
    if (m_chosen)
        m_mainQueue.async(std::move(m_chosen));
}

OpenMenu::OpenMenu(const Signal<>& willTerminate)
    : m_willTerminate(willTerminate.subscribe([this] {
        m_hasEnded = true;
        close();
    }))
{
}

OpenMenu::~OpenMenu()
{
    close();
}

void OpenMenu::close()
{
    const auto before = std::exchange(m_session, nullptr);
    if (!before)
        return;
    if (before->isShown())
        m_leaving = before;
    before->cancel();
}

void OpenMenu::open(std::shared_ptr<MenuSession> session, Work begin)
{
    close();
    if (m_hasEnded)
        return session->cancel();
    m_session = std::move(session);
    if (m_leaving && m_leaving->isShown())
        m_leaving->setNext(std::move(begin));
    else
        begin();
}

}
