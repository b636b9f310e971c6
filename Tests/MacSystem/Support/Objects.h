#pragma once

#include <any>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <ApplicationServices/ApplicationServices.h>

#include "Tests/MacSystem/Support/LeakCheck.h"

namespace quorvel::test {

enum class TypeID : CFTypeID {
    null = 1,
    string = 7,
    dictionary = 18,
    array = 19,
    boolean = 21,
    number = 22,
    uuid = 41,
    axValue = 60,
    element,
    observer,
    runLoop,
    runLoopSource,
    event,
    locale,
    url,
    eventStream,
};

/// A reference-counted object of the simulated system.
struct Object {
    TypeID type{};
    std::string name; ///< for the report; strings and elements with the same one are equal
    std::any content; ///< given up with the last reference
    int references = 1;
};

/// Every object of the simulated system. They are kept after the last release until `takeReport`,
/// so that whoever still uses one is found out.
class Heap {
public:
    /// The C calls carry no context, so there is one.
    static Heap& shared();

    CFTypeRef add(Object);
    /// One of the system's own, which is never freed.
    CFTypeRef addConstant(Object);
    /// Using null or a released object is noted; null ends the program, as it would on the system.
    Object& use(CFTypeRef);
    void note(std::string fault) { m_faults.push_back(std::move(fault)); }
    void pushPool() { ++m_pools; }
    void popPool() { --m_pools; }

    /// What was used wrongly, what was not released, and unbalanced pools; then all is forgotten.
    std::vector<std::string> takeReport();

private:
    std::vector<std::unique_ptr<Object>> m_objects;
    std::vector<std::unique_ptr<Object>> m_constants; ///< strings and truth values of the system
    std::vector<std::string> m_faults;
    int m_pools = 0;
};

/// Gives the first reference away, like a call with Create or Copy in its name.
template <typename Ref> Ref create(TypeID type, std::string name, std::any content)
{
    const auto ref = Heap::shared().add({type, std::move(name), std::move(content)});
    return static_cast<Ref>(const_cast<void*>(ref));
}

/// Null for bytes that are no UTF-8.
CFStringRef createString(std::string_view utf8);
std::string utf8(CFStringRef);

/// Null if the object holds something else.
template <typename Content> Content* contentIf(CFTypeRef ref)
{
    return ref ? std::any_cast<Content>(&Heap::shared().use(ref).content) : nullptr;
}
/// For calls that take only such an object: anything else ends the test.
template <typename Content> Content& contentOf(CFTypeRef ref)
{
    return std::any_cast<Content&>(Heap::shared().use(ref).content);
}

}
