# Targets of this project: one set of warnings, one include rule.
#
# A target's include root is its own folder, given as a quote path: `#include "x.h"` finds it and
# `#include <x.h>` never does, so that a file named memory.h here cannot shadow a system header.
# A folder becomes visible only to the targets that link the library that lives there.

option(TOLK_WERROR "Treat warnings as errors" OFF)
option(TOLK_STATIC_RUNTIME "Link libstdc++ and libgcc statically" OFF)
set(TOLK_SANITIZE "" CACHE STRING "Value of -fsanitize=, empty for none")

set(TOLK_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wcast-align -Wnon-virtual-dtor -Woverloaded-virtual
  -Wnull-dereference)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 warns of overlaps in "text" + std::string that are none.
  list(APPEND TOLK_WARNINGS -Wno-restrict)
endif()
set(TOLK_C_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wcast-align)
if(TOLK_WERROR)
  list(APPEND TOLK_WARNINGS -Werror)
  list(APPEND TOLK_C_WARNINGS -Werror)
endif()

find_program(TOLK_CCACHE ccache)
if(TOLK_CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER "${TOLK_CCACHE}")
  set(CMAKE_CXX_COMPILER_LAUNCHER "${TOLK_CCACHE}")
endif()

function(tolk_common name)
  target_compile_options(${name} PRIVATE
    "$<$<COMPILE_LANGUAGE:CXX>:${TOLK_WARNINGS}>" "$<$<COMPILE_LANGUAGE:C>:${TOLK_C_WARNINGS}>")
  target_compile_options(${name} PUBLIC "SHELL:-iquote ${CMAKE_CURRENT_SOURCE_DIR}")
  if(TOLK_SANITIZE)
    target_compile_options(${name} PRIVATE -fsanitize=${TOLK_SANITIZE} -fno-omit-frame-pointer
      -fno-sanitize-recover=all)
    target_link_options(${name} PRIVATE -fsanitize=${TOLK_SANITIZE})
  endif()
endfunction()

# A static library of this project.
function(tolk_library name)
  add_library(${name} STATIC ${ARGN})
  tolk_common(${name})
endfunction()

# What most sources of a library read anyway, read once. A source still includes what it uses.
function(tolk_precompile name)
  target_precompile_headers(${name} PRIVATE
    <algorithm>
    <functional>
    <memory>
    <string>
    <unordered_map>
    <vector>
    ${ARGN}
  )
endfunction()

# An executable of this project; the release preset links the C++ runtime statically, because
# finding and relocating it is most of what a short run costs.
function(tolk_executable name)
  add_executable(${name} ${ARGN})
  tolk_common(${name})
  if(TOLK_STATIC_RUNTIME)
    target_link_options(${name} PRIVATE -static-libstdc++ -static-libgcc)
  endif()
  if(TOLK_SANITIZE MATCHES "address")
    # What the checks know of the sources is full of addresses: to relocate them takes half of a short run.
    target_link_options(${name} PRIVATE -no-pie)
  endif()
endfunction()
