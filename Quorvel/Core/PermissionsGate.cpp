#include "Quorvel/Core/PermissionsGate.h"

#include <cstdio>

#include "Quorvel/Platform/Accessibility.h"
#include "Quorvel/Platform/ScreenCapture.h"

namespace quorvel {

namespace {

constexpr Duration kPollInterval = seconds(1);

}

PermissionsGate::PermissionsGate(Dispatch& dispatch, Accessibility& accessibility,
    ScreenCapture& screenCapture, std::function<void()> granted)
    : m_dispatch(dispatch)
    , m_accessibility(accessibility)
    , m_screenCapture(screenCapture)
    , m_granted(std::move(granted))
{
}

void PermissionsGate::show()
{
    if (!m_accessibility.isTrusted()) {
        std::fputs("quorvel: waiting for the Accessibility permission\n", stderr);
        m_accessibility.promptForTrust();
    }
    if (!m_screenCapture.preflightAccess()) {
        std::fputs("quorvel: waiting for the Screen Recording permission\n", stderr);
        m_screenCapture.requestAccess();
    }
    check();
}

void PermissionsGate::check()
{
    // Whoever is told may find a permission gone again, and then this goes on looking; or it ends
    // this object, so that the call is the last.
    m_poll = m_dispatch.main().after(kPollInterval, [this] { check(); });
    if (m_accessibility.isTrusted() && m_screenCapture.preflightAccess()) {
        auto granted = m_granted;
        granted();
    }
}

}
