# Builds for macOS on Debian with clang-19 and lld. scripts/check-macos makes what it needs:
#   MACOS_SYSROOT       the tree of make-sysroot
#   MACOS_ARCHITECTURE  arm64 or x86_64
#   MACOS_HEADERS       a folder with the header-only libraries that the program uses
set(CMAKE_SYSTEM_NAME Darwin)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES MACOS_SYSROOT MACOS_ARCHITECTURE MACOS_HEADERS)
if(NOT EXISTS "${MACOS_SYSROOT}/SDKSettings.json")
  message(FATAL_ERROR "MACOS_SYSROOT is no sysroot: run scripts/check-macos")
endif()

set(CMAKE_SYSTEM_PROCESSOR ${MACOS_ARCHITECTURE})
set(CMAKE_OSX_SYSROOT "${MACOS_SYSROOT}")
set(CMAKE_OSX_ARCHITECTURES ${MACOS_ARCHITECTURE})
set(CMAKE_OSX_DEPLOYMENT_TARGET 13.0)

find_program(CMAKE_CXX_COMPILER clang++-19 REQUIRED)
set(CMAKE_OBJCXX_COMPILER "${CMAKE_CXX_COMPILER}")
foreach(language CXX OBJCXX)
  set(CMAKE_${language}_COMPILER_TARGET ${MACOS_ARCHITECTURE}-apple-macos13.0)
endforeach()
find_program(CMAKE_AR llvm-ar-19 REQUIRED)
find_program(CMAKE_RANLIB llvm-ranlib-19 REQUIRED)
find_program(CMAKE_NM llvm-nm-19)
find_program(CMAKE_STRIP llvm-strip-19)
find_program(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool-19 REQUIRED)
find_program(CMAKE_OTOOL llvm-otool-19)

# Without -nostdinc++ clang takes Debian's libc++: another configuration, no availability marks.
set(flags "-nostdinc++ -isystem ${MACOS_SYSROOT}/usr/include/c++/v1")
string(APPEND flags " -Wunguarded-availability-new -Werror=unguarded-availability")
string(APPEND flags " -Werror=unguarded-availability-new")
set(CMAKE_CXX_FLAGS_INIT "${flags}")
set(CMAKE_OBJCXX_FLAGS_INIT "${flags}")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-fuse-ld=lld -Wl,-dead_strip -Wl,-fatal_warnings")

set(CMAKE_FIND_ROOT_PATH "${MACOS_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(fmt_DIR "${CMAKE_CURRENT_LIST_DIR}/packages" CACHE PATH "fmt for the check")
set(nlohmann_json_DIR "${CMAKE_CURRENT_LIST_DIR}/packages" CACHE PATH "nlohmann-json for the check")
set(GTest_DIR "${CMAKE_CURRENT_LIST_DIR}/packages" CACHE PATH "GoogleTest for the check")
