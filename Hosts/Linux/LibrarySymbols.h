#pragma once

#include <dlfcn.h>

namespace quorvel::xdg {

/// Functions of a library that is not linked, which would cost every bar memory that few users
/// need, but loaded when first needed: it stays loaded, since GObject cannot forget a type.
/// Remembers whether all of them were found.
class LibrarySymbols {
public:
    explicit LibrarySymbols(const char* library)
        : m_library(dlopen(library, RTLD_LAZY | RTLD_LOCAL))
    {
    }

    template <typename Function> void find(const char* name, Function& function)
    {
        function = m_library ? reinterpret_cast<Function>(dlsym(m_library, name)) : nullptr;
        m_areComplete = m_areComplete && function;
    }
    bool areComplete() const { return m_areComplete; }

private:
    void* m_library;
    bool m_areComplete = true;
};

}
