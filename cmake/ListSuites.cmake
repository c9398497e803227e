# Runs a test program for its list of tests and writes a file that gives ctest one test for each suite of it:
#   cmake -D NAME=... -D "RUN=emulator;program" -D FILE=... -D "PROPERTIES=name;value" -P ListSuites.cmake
execute_process(COMMAND ${RUN} --gtest_list_tests
  OUTPUT_VARIABLE listing ERROR_VARIABLE complaint RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${NAME} does not list its tests (${status}):\n${complaint}")
endif()

string(JOIN "]==] [==[" command ${RUN})
string(JOIN " " properties ${PROPERTIES})
set(tests "")
string(REGEX MATCHALL "[^\n]+" lines "${listing}")
foreach(line IN LISTS lines)
  # A suite begins its line and ends in a dot; behind it may stand the type that it is made for.
  if(line MATCHES "^([^ #]+)\\.( .*)?$")
    set(suite "${CMAKE_MATCH_1}")
    # Skipped is a suite of which no test ran; one that skips some must not hide another's failure.
    string(APPEND tests "add_test([==[${NAME}.${suite}]==] [==[${command}]==] [==[--gtest_filter=${suite}.*]==])\n"
      "set_tests_properties([==[${NAME}.${suite}]==] PROPERTIES ${properties}\n"
      "  SKIP_REGULAR_EXPRESSION \"PASSED  . 0 tests[.]\\n.  SKIPPED \")\n")
  endif()
endforeach()
if(NOT tests)
  message(FATAL_ERROR "${NAME} has no tests:\n${listing}")
endif()
file(WRITE "${FILE}" "${tests}")
