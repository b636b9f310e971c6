# fmt as headers only: there is no library of it for macOS on Debian.
if(NOT TARGET fmt::fmt)
  add_library(fmt::fmt INTERFACE IMPORTED)
  target_include_directories(fmt::fmt SYSTEM INTERFACE "${MACOS_HEADERS}")
  target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY=1)
endif()
