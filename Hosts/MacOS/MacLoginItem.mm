#include "Hosts/MacOS/MacLoginItem.h"

#include <dlfcn.h>

#include "Hosts/MacOS/Cocoa.h"

/// What is used of the login service. The framework is loaded when first asked, so that the program
/// builds where its headers are not.
@protocol QVLoginService <NSObject>
@property (readonly) NSInteger status;
- (BOOL)registerAndReturnError:(NSError**)error;
- (BOOL)unregisterAndReturnError:(NSError**)error;
@end

@protocol QVLoginServiceClass
@property (class, readonly) id<QVLoginService> mainAppService;
@end

namespace quorvel {

namespace {

constexpr char kServiceManagement[]
    = "/System/Library/Frameworks/ServiceManagement.framework/ServiceManagement";

/// Nil where the system has none.
id<QVLoginService> mainAppService()
{
    static void* const library = dlopen(kServiceManagement, RTLD_LAZY | RTLD_LOCAL);
    Class<QVLoginServiceClass> service = library ? NSClassFromString(@"SMAppService") : Nil;
    return [service mainAppService];
}

}

LoginItem::Status MacLoginItem::status() const
{
    id<QVLoginService> service = mainAppService();
    if (!service)
        return Status::notFound;
    switch (service.status) {
    case 0:
        return Status::notRegistered;
    case 1:
        return Status::enabled;
    case 2:
        return Status::requiresApproval;
    default:
        return Status::notFound;
    }
}

bool MacLoginItem::registerItem() { return [mainAppService() registerAndReturnError:nil]; }

bool MacLoginItem::unregisterItem() { return [mainAppService() unregisterAndReturnError:nil]; }

}
