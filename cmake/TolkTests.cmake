# Test programs of this project. A test's suite is its label: `ctest -L unit`.
find_package(GTest REQUIRED)
set(tolk_list_suites "${CMAKE_CURRENT_LIST_DIR}/ListSuites.cmake")

# A test program. Reading the framework's header is a good part of what compiling a test costs.
function(tolk_test_program name)
  tolk_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE GTest::gtest_main)
  target_precompile_headers(${name} PRIVATE
    <gtest/gtest.h>
    <functional>
    <map>
    <memory>
    <string>
    <vector>
  )
endfunction()

# tolk_discover_suites(program property value...): a test of ctest for each suite of the program. One for each
# test would start a sanitizer two thousand times, which takes longer than the tests do.
function(tolk_discover_suites name)
  set(list "${CMAKE_CURRENT_BINARY_DIR}/${name}_suites.cmake")
  get_target_property(emulator ${name} CROSSCOMPILING_EMULATOR)
  if(NOT emulator)
    set(emulator "")
  endif()
  add_custom_command(TARGET ${name} POST_BUILD
    COMMAND "${CMAKE_COMMAND}" -D NAME=${name} -D "RUN=${emulator};$<TARGET_FILE:${name}>" -D "FILE=${list}"
      -D "PROPERTIES=${ARGN}" -P "${tolk_list_suites}"
    VERBATIM)
  # A program that is not built has no suites yet.
  set(include "${CMAKE_CURRENT_BINARY_DIR}/${name}_include.cmake")
  file(WRITE "${include}" "include([==[${list}]==] OPTIONAL RESULT_VARIABLE found)\n"
    "if(NOT found)\n  add_test(${name}_NOT_BUILT ${name}_NOT_BUILT)\nendif()\n")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${include}")
endfunction()

# tolk_unit_test(name source... [LINK library...])
function(tolk_unit_test name)
  cmake_parse_arguments(PARSE_ARGV 1 unit "" "" "LINK")
  tolk_test_program(${name} ${unit_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE ${unit_LINK})
  tolk_discover_suites(${name} LABELS unit TIMEOUT 60)
endfunction()
