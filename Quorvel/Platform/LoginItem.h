#pragma once

namespace quorvel {

/// Whether the system starts the program when the user logs in. The user can change it elsewhere,
/// so the status is asked for each time. Main thread.
class LoginItem {
public:
    enum class Status {
        notRegistered,
        enabled,
        requiresApproval, ///< registered, and the user has not allowed it yet
        notFound, ///< the system does not know the program
    };

    virtual ~LoginItem() = default;

    virtual Status status() const = 0;
    /// False if the system refuses. It may do as asked and still not be `enabled` afterwards.
    virtual bool registerItem() = 0;
    virtual bool unregisterItem() = 0;
};

}
