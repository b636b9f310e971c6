#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include <gtest/gtest.h>

#include "Tests/MacSystem/Support/Objects.h"

namespace quorvel::test {

Heap& Heap::shared()
{
    static Heap heap;
    return heap;
}

Object& Heap::use(CFTypeRef ref)
{
    if (!ref) {
        std::fprintf(stderr, "null was used as an object of the system\n");
        std::abort();
    }
    auto& object = *static_cast<Object*>(const_cast<void*>(ref));
    if (object.m_references <= 0)
        note("used after its release: " + object.description());
    return object;
}

void Heap::retain(CFTypeRef ref)
{
    ++use(ref).m_references;
}

void Heap::release(CFTypeRef ref)
{
    auto& object = use(ref);
    if (--object.m_references == 0)
        object.dispose();
}

std::vector<std::string> Heap::takeReport()
{
    for (const auto& object : m_objects) {
        if (object->m_references > 0)
            note("not released: " + object->description());
    }
    for (const auto& object : m_constants) {
        if (std::exchange(object->m_references, 1) != 1)
            note("retained and released unequally often: " + object->description());
    }
    if (m_pools != 0)
        note("autorelease pools are not balanced");
    auto faults = std::exchange(m_faults, {});
    for (const auto& object : m_objects)
        object->dispose(); // what is left holds others: let go before any memory goes
    m_objects.clear();
    m_faults.clear();
    m_pools = 0;
    return faults;
}

LeakCheck::~LeakCheck()
{
    for (const auto& fault : Heap::shared().takeReport())
        ADD_FAILURE() << fault;
}

}

using quorvel::test::Heap;

CFTypeRef CFRetain(CFTypeRef ref)
{
    Heap::shared().retain(ref);
    return ref;
}

void CFRelease(CFTypeRef ref)
{
    Heap::shared().release(ref);
}

CFTypeID CFGetTypeID(CFTypeRef ref)
{
    return static_cast<CFTypeID>(Heap::shared().use(ref).type());
}

Boolean CFEqual(CFTypeRef a, CFTypeRef b)
{
    return Heap::shared().use(a).equals(Heap::shared().use(b));
}

CFHashCode CFHash(CFTypeRef ref)
{
    return Heap::shared().use(ref).hash();
}

extern "C" void* objc_autoreleasePoolPush()
{
    Heap::shared().pushPool();
    return &Heap::shared();
}

extern "C" void objc_autoreleasePoolPop(void*)
{
    Heap::shared().popPool();
}
