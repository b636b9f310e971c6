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

CFTypeRef Heap::add(Object object)
{
    m_objects.push_back(std::make_unique<Object>(std::move(object)));
    return m_objects.back().get();
}

CFTypeRef Heap::addConstant(Object object)
{
    m_constants.push_back(std::make_unique<Object>(std::move(object)));
    return m_constants.back().get();
}

Object& Heap::use(CFTypeRef ref)
{
    if (!ref) {
        std::fprintf(stderr, "null was used as an object of the system\n");
        std::abort();
    }
    auto& object = *static_cast<Object*>(const_cast<void*>(ref));
    if (object.references <= 0)
        note("used after its release: " + object.name);
    return object;
}

std::vector<std::string> Heap::takeReport()
{
    for (const auto& object : m_objects) {
        if (object->references > 0)
            note("not released: " + object->name);
    }
    for (const auto& object : m_constants) {
        if (std::exchange(object->references, 1) != 1)
            note("retained and released unequally often: " + object->name);
    }
    if (std::exchange(m_pools, 0) != 0)
        note("autorelease pools are not balanced");
    auto faults = std::exchange(m_faults, {});
    for (const auto& object : m_objects)
        object->content.reset(); // what is left holds others: let go before any memory goes
    m_objects.clear();
    m_faults.clear();
    return faults;
}

LeakCheck::~LeakCheck()
{
    for (const auto& fault : Heap::shared().takeReport())
        ADD_FAILURE() << fault;
}

}

using namespace quorvel::test;

CFTypeRef CFRetain(CFTypeRef ref)
{
    ++Heap::shared().use(ref).references;
    return ref;
}

void CFRelease(CFTypeRef ref)
{
    auto& object = Heap::shared().use(ref);
    if (--object.references == 0)
        object.content.reset();
}

CFTypeID CFGetTypeID(CFTypeRef ref)
{
    return static_cast<CFTypeID>(Heap::shared().use(ref).type);
}

Boolean CFEqual(CFTypeRef a, CFTypeRef b)
{
    const auto& first = Heap::shared().use(a);
    const auto& second = Heap::shared().use(b);
    const bool haveNames = first.type == TypeID::string || first.type == TypeID::element;
    return &first == &second
        || (haveNames && first.type == second.type && first.name == second.name);
}

CFHashCode CFHash(CFTypeRef ref)
{
    return std::hash<std::string>{}(Heap::shared().use(ref).name);
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
