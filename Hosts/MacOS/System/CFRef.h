#pragma once

#include <utility>

#include "Hosts/MacOS/System/System.h"

namespace quorvel {

/// Owns one reference to a CoreFoundation object. The two factory functions say where it came from:
/// a call with Create or Copy in its name returns a reference that the caller owns, any other call
/// keeps its own.
template <typename Ref> class CFRef {
public:
    CFRef() = default;
    static CFRef adopt(Ref created) { return CFRef{created}; }
    static CFRef retain(Ref borrowed)
    {
        if (borrowed)
            CFRetain(borrowed);
        return CFRef{borrowed};
    }

    CFRef(const CFRef& other) : CFRef(retain(other.m_ref)) { }
    CFRef(CFRef&& other) noexcept : m_ref(std::exchange(other.m_ref, nullptr)) { }
    CFRef& operator=(CFRef other) noexcept
    {
        std::swap(m_ref, other.m_ref);
        return *this;
    }
    ~CFRef()
    {
        if (m_ref)
            CFRelease(m_ref);
    }

    Ref get() const { return m_ref; }
    explicit operator bool() const { return m_ref != nullptr; }
    /// For calls that return an owned reference through a pointer. Only while empty.
    Ref* out() { return &m_ref; }

private:
    explicit CFRef(Ref ref) : m_ref(ref) { }

    Ref m_ref = nullptr;
};

}
