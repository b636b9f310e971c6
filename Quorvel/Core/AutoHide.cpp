#include "Quorvel/Core/AutoHide.h"

#include <utility>

namespace quorvel {

AutoHide::AutoHide(Queue& main, std::function<void()> onChange)
    : m_main(main)
    , m_onChange(std::move(onChange))
{
}

bool AutoHide::isWantedOut() const
{
    return m_isWantedOut.value_or(m_isOverlapped);
}

bool AutoHide::shouldBeOut() const
{
    return isWantedOut() && !m_isInUse && !m_edgeStay.isPending() && !m_attentionStay.isPending();
}

void AutoHide::update()
{
    if (!shouldBeOut())
        setOut(false);
    else if (!m_isOut && !m_going.isPending())
        m_going = m_main.after(kGoesAfter, [this] { setOut(true); });
}

void AutoHide::setOut(bool isOut)
{
    m_going = {};
    m_rest = {};
    if (std::exchange(m_isOut, isOut) != isOut)
        m_onChange();
}

void AutoHide::setOverlapped(bool isOverlapped)
{
    if (std::exchange(m_isOverlapped, isOverlapped) == isOverlapped)
        return;
    m_isWantedOut.reset();
    update();
}

void AutoHide::setShowingDesktop(bool isShowing)
{
    if (std::exchange(m_isShowingDesktop, isShowing) == isShowing)
        return;
    if (isShowing) {
        m_wasSentAway = m_isWantedOut == true;
        m_isWantedOut.reset();
    } else if (std::exchange(m_wasSentAway, false)) {
        m_isWantedOut = true;
    }
    update();
}

void AutoHide::setInUse(bool isInUse)
{
    if (std::exchange(m_isInUse, isInUse) == isInUse)
        return;
    // Whoever was called in for this has done what it came for.
    m_edgeStay = {};
    m_attentionStay = {};
    if (!isInUse && m_isWantedOut == false)
        m_isWantedOut.reset();
    update();
}

void AutoHide::edgeTouched(EdgeContact contact)
{
    if (!m_isOut)
        return;
    switch (contact) {
    case EdgeContact::came:
        m_rest = m_main.after(kRestsFor, [this] { callIn(); });
        break;
    case EdgeContact::pressed:
        m_rest = m_main.after(Duration::zero(), [this] { callIn(); });
        break;
    case EdgeContact::left:
        m_rest = {};
        break;
    }
}

void AutoHide::callIn()
{
    stayFor(m_edgeStay, kStaysForEdge);
}

void AutoHide::attentionBegan()
{
    stayFor(m_attentionStay, kStaysForAttention);
}

void AutoHide::attentionEnded()
{
    m_attentionStay = {};
    update();
}

void AutoHide::stayFor(WorkItem& stay, Duration length)
{
    if (!isWantedOut())
        return;
    stay = m_main.after(length, [this] { update(); });
    update();
}

void AutoHide::toggle()
{
    m_isWantedOut = !m_isOut;
    m_wasSentAway = false;
    m_edgeStay = {};
    m_attentionStay = {};
    if (shouldBeOut())
        setOut(true);
    else
        update();
}

}
