# Test programs of this project. A test's suite is its label: `ctest -L unit`.
find_package(GTest REQUIRED)
include(GoogleTest)

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

# tolk_unit_test(name source... [LINK library...])
function(tolk_unit_test name)
  cmake_parse_arguments(PARSE_ARGV 1 unit "" "" "LINK")
  tolk_test_program(${name} ${unit_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE ${unit_LINK})
  gtest_discover_tests(${name} PROPERTIES LABELS unit TIMEOUT 60)
endfunction()
