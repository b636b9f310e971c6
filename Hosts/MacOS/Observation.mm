#include "Hosts/MacOS/Observation.h"

namespace quorvel {

NotificationObserver::NotificationObserver(
    NSNotificationCenter* center, NSNotificationName name, Handler handler)
    : m_center(center)
    , m_token(
          [center addObserverForName:name
                              object:nil
                               queue:NSOperationQueue.mainQueue
                          usingBlock:^(NSNotification* notification) { handler(notification); }])
{
}

NotificationObserver::NotificationObserver(NotificationObserver&& other) noexcept
    : m_center(other.m_center)
    , m_token(std::exchange(other.m_token, nil))
{
}

NotificationObserver::~NotificationObserver()
{
    if (m_token)
        [m_center removeObserver:m_token];
}

}

@implementation QVPropertyObserver {
    NSObject* _object;
    NSString* _keyPath;
    void (^_handler)(void);
}

- (instancetype)initWithObject:(NSObject*)object
                       keyPath:(NSString*)keyPath
                       handler:(void (^)(void))handler
{
    self = [super init];
    if (self) {
        _object = object;
        _keyPath = [keyPath copy];
        _handler = [handler copy];
        [object addObserver:self forKeyPath:keyPath options:0 context:nullptr];
    }
    return self;
}

- (void)invalidate
{
    [_object removeObserver:self forKeyPath:_keyPath];
    _object = nil;
    _handler = nil;
}

- (void)observeValueForKeyPath:(NSString*)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(void*)context
{
    if (_handler)
        _handler();
}

@end
