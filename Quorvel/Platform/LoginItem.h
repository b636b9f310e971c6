#pragma once

namespace quorvel {

/// Whether the system starts the program when the user logs in. The user can change this elsewhere,
/// so the status is read each time. Main thread.
class LoginItem {
public:
    enum class Status {
        notRegistered,
        enabled,
        requiresApproval, ///< registered, but not yet allowed by the user
        notFound, ///< the system does not know the program
    };

    virtual ~LoginItem() = default;

    virtual Status status() const = 0;
    /// False if the system refuses. Success does not guarantee that it is `enabled` afterwards.
    virtual bool registerItem() = 0;
    virtual bool unregisterItem() = 0;
};

}
