#pragma once

#include "Quorvel/Platform/LoginItem.h"

namespace quorvel::test {

/// The system's list of login items, with one possible entry.
class FakeLoginItem final : public LoginItem {
public:
    Status status() const override { return m_status; }
    bool registerItem() override { return change(Status::enabled); }
    bool unregisterItem() override { return change(Status::notRegistered); }

    /// What the user did in the system's own settings.
    void setStatus(Status status) { m_status = status; }
    void setRefuses(bool value) { m_refuses = value; }
    /// Of both kinds.
    int requests() const { return m_requests; }

private:
    bool change(Status status)
    {
        ++m_requests;
        if (!m_refuses)
            m_status = status;
        return !m_refuses;
    }

    Status m_status = Status::notRegistered;
    bool m_refuses = false;
    int m_requests = 0;
};

}
