#include "Hosts/MacOS/MacUpdater.h"

#include "Hosts/MacOS/Observation.h"

/// What is used of Sparkle's controller. The framework is loaded at run time, so that the program
/// builds and runs without it.
@protocol QVUpdaterController <NSObject>
- (instancetype)initWithStartingUpdater:(BOOL)startsNow
                        updaterDelegate:(id)updaterDelegate
                     userDriverDelegate:(id)userDriverDelegate;
@property (readonly) NSObject* updater;
- (void)startUpdater;
- (IBAction)checkForUpdates:(id)sender;
@end

namespace quorvel {

namespace {

NSString* const kCanCheck = @"canCheckForUpdates";

Class updaterControllerClass()
{
    NSString* path = [NSBundle.mainBundle.privateFrameworksPath
        stringByAppendingPathComponent:@"Sparkle.framework"];
    NSBundle* sparkle = path ? [NSBundle bundleWithPath:path] : nil;
    if (![sparkle loadAndReturnError:nil])
        return Nil;
    return NSClassFromString(@"SPUStandardUpdaterController");
}

bool canCheck(NSObject* updater) { return [[updater valueForKey:kCanCheck] boolValue]; }

}

std::unique_ptr<MacUpdater> MacUpdater::load()
{
    // Without an address to ask, the framework would complain to the user of a bundle set up badly.
    if (![NSBundle.mainBundle objectForInfoDictionaryKey:@"SUFeedURL"])
        return nullptr;
    Class type = updaterControllerClass();
    const SEL initialiser = @selector(initWithStartingUpdater:updaterDelegate:userDriverDelegate:);
    if (![type instancesRespondToSelector:initialiser])
        return nullptr;
    id<QVUpdaterController> controller = [type alloc];
    controller = [controller initWithStartingUpdater:NO updaterDelegate:nil userDriverDelegate:nil];
    if (![controller respondsToSelector:@selector(updater)]
        || ![controller respondsToSelector:@selector(startUpdater)]
        || ![controller respondsToSelector:@selector(checkForUpdates:)])
        return nullptr;
    NSObject* updater = controller.updater;
    if (![updater respondsToSelector:NSSelectorFromString(kCanCheck)])
        return nullptr;
    return std::unique_ptr<MacUpdater>{new MacUpdater{controller, updater}};
}

MacUpdater::MacUpdater(id<QVUpdaterController> controller, NSObject* updater)
    : m_controller(controller)
    , m_canCheckForUpdates(canCheck(updater))
{
    __unsafe_unretained NSObject* observed = updater; // the controller's, and so as long as this
    m_observer = [[QVPropertyObserver alloc]
        initWithObject:updater
               keyPath:kCanCheck
               handler:^{ m_canCheckForUpdates.set(canCheck(observed)); }];
}

MacUpdater::~MacUpdater() { [m_observer invalidate]; }

void MacUpdater::start() { [m_controller startUpdater]; }

void MacUpdater::checkForUpdates() { [m_controller checkForUpdates:nil]; }

}
