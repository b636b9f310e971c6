#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <ApplicationServices/ApplicationServices.h>

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

/// A reference-counted object of the simulated system. Memory is kept after the last release until
/// the leak check, so that whoever still uses the object is found out.
class Object {
public:
    explicit Object(TypeID type) : m_type(type) { }
    virtual ~Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    TypeID type() const { return m_type; }
    virtual std::string description() const = 0;
    virtual bool equals(const Object& other) const { return this == &other; }
    virtual std::size_t hash() const { return std::hash<const Object*>{}(this); }
    /// The last reference has gone: gives up what it holds.
    virtual void dispose() { }

private:
    friend class Heap;

    TypeID m_type;
    int m_references = 1;
};

/// Every object of the simulated system. Misuse is noted and told by `takeReport`.
class Heap {
public:
    /// The C calls carry no context, so there is one.
    static Heap& shared();

    void add(std::unique_ptr<Object> object) { m_objects.push_back(std::move(object)); }
    void addConstant(std::unique_ptr<Object> object) { m_constants.push_back(std::move(object)); }
    void retain(CFTypeRef);
    void release(CFTypeRef);
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

/// Fails the test that leaks an object, releases one too often or uses one after its release.
/// Declared first in a fixture, so that it dies last.
class LeakCheck {
public:
    LeakCheck() = default;
    ~LeakCheck();
    LeakCheck(const LeakCheck&) = delete;
    LeakCheck& operator=(const LeakCheck&) = delete;
};

/// Gives the first reference away, like a call with Create or Copy in its name.
template <typename Ref, typename Type, typename... Arguments> Ref create(Arguments&&... arguments)
{
    auto object = std::make_unique<Type>(std::forward<Arguments>(arguments)...);
    const auto ref = reinterpret_cast<Ref>(static_cast<Object*>(object.get()));
    Heap::shared().add(std::move(object));
    return ref;
}

/// Null if the object is of another type.
template <typename Type> Type* objectAs(CFTypeRef ref)
{
    return ref ? dynamic_cast<Type*>(&Heap::shared().use(ref)) : nullptr;
}
/// For calls that take only an object of that type: anything else ends the program.
template <typename Type> Type& expectObject(CFTypeRef ref)
{
    return dynamic_cast<Type&>(Heap::shared().use(ref));
}

CFStringRef createString(std::string_view utf8);
std::string utf8(CFStringRef);

}
