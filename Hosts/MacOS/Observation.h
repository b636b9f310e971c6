#pragma once

#include <functional>
#include <utility>

#include "Hosts/MacOS/Cocoa.h"

namespace quorvel {

/// A subscription to one notification of a centre. Dropping it ends it. Main thread.
class NotificationObserver {
public:
    using Handler = std::function<void(NSNotification*)>;

    NotificationObserver(NSNotificationCenter*, NSNotificationName, Handler);
    NotificationObserver(NotificationObserver&&) noexcept;
    NotificationObserver& operator=(NotificationObserver&&) = delete;
    ~NotificationObserver();

private:
    NSNotificationCenter* m_center;
    id<NSObject> m_token;
};

}

/// Calls a handler on each change of one property of an object.
@interface QVPropertyObserver : NSObject
- (instancetype)initWithObject:(NSObject*)object
                       keyPath:(NSString*)keyPath
                       handler:(void (^)(void))handler;
- (void)invalidate;
@end
