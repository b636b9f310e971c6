#pragma once

// The simulated system's loader: the private calls are found here and nowhere else.

#ifndef RTLD_LAZY
#define RTLD_LAZY 1
#define RTLD_LOCAL 4
#endif
#undef RTLD_DEFAULT
#define RTLD_DEFAULT (reinterpret_cast<void*>(-2L))
#define dlopen simulatedOpen
#define dlsym simulatedSymbol

extern "C" {
void* simulatedOpen(const char* path, int mode);
void* simulatedSymbol(void* library, const char* name);
}
