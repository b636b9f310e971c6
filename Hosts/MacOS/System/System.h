#pragma once

// Every C interface of the system that this folder uses is included here and nowhere else.

#include <ApplicationServices/ApplicationServices.h>
#include <Carbon/Carbon.h>
#include <CoreFoundation/CoreFoundation.h>
#include <dispatch/dispatch.h>
#include <dlfcn.h>
#include <pthread.h>
#include <pthread/qos.h>
#include <time.h>

extern "C" {
// The Objective-C runtime's own calls, part of the ABI that ARC code is compiled to.
void* objc_autoreleasePoolPush(void);
void objc_autoreleasePoolPop(void* pool);
}

namespace quorvel {

/// The frameworks behind the C calls autorelease objects, even on threads that have no pool.
class AutoreleasePool {
public:
    AutoreleasePool() : m_pool(objc_autoreleasePoolPush()) { }
    ~AutoreleasePool() { objc_autoreleasePoolPop(m_pool); }
    AutoreleasePool(const AutoreleasePool&) = delete;
    AutoreleasePool& operator=(const AutoreleasePool&) = delete;

private:
    void* m_pool;
};

}
