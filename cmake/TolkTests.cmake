# Test programs of this project. A test's suite is its label: `ctest -L unit`.
find_package(GTest REQUIRED)
include(GoogleTest)

# tolk_unit_test(name source... [LINK library...])
function(tolk_unit_test name)
  cmake_parse_arguments(PARSE_ARGV 1 unit "" "" "LINK")
  tolk_executable(${name} ${unit_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE ${unit_LINK} GTest::gtest_main)
  gtest_discover_tests(${name} PROPERTIES LABELS unit TIMEOUT 60)
endfunction()
