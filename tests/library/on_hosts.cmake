# Every call of the library as a text, and a table of all that can be asked of a device.
tolk_library(library_calls
  calls/ask.cpp
  calls/operations.cpp
  calls/records.cpp
)
target_link_libraries(library_calls PUBLIC lumo)

# Every function of the C header on simulated hosts, as another program would call it: one run per host.
tolk_test_program(library_tests
  on_hosts/arguments_test.cpp
  on_hosts/bare_host_test.cpp
  on_hosts/changes_test.cpp
  on_hosts/device_values_test.cpp
  on_hosts/events_test.cpp
  on_hosts/guest_host_test.cpp
  on_hosts/handles_test.cpp
  on_hosts/kinds_test.cpp
  on_hosts/link_values_test.cpp
  on_hosts/mpc_changes_test.cpp
  on_hosts/mpc_host_test.cpp
  on_hosts/naming_test.cpp
  on_hosts/no_gpu_test.cpp
  on_hosts/older_host_test.cpp
  on_hosts/part_values_test.cpp
  on_hosts/ranges_test.cpp
  on_hosts/refusal_test.cpp
  on_hosts/sampling_test.cpp
  on_hosts/threads_test.cpp
  on_hosts/topology_test.cpp
  on_hosts/vgpu_values_test.cpp
)
find_package(nlohmann_json 3.11 REQUIRED)
target_compile_definitions(library_tests PRIVATE TOLK_HOST_FOLDER="${CMAKE_CURRENT_SOURCE_DIR}/hosts")
target_link_libraries(library_tests PRIVATE library_calls nlohmann_json::nlohmann_json)

tolk_executable(library_plain_c_test plain_c_test.c)
target_link_libraries(library_plain_c_test PRIVATE lumo)

# Calls everything and only survives.
tolk_executable(library_walk walk.cpp)
target_link_libraries(library_walk PRIVATE library_calls)

# Tells all answers.
tolk_executable(library_answers answers.cpp)
target_link_libraries(library_answers PRIVATE library_calls)

if(TARGET ovgpu-sim)
  find_package(Python3 3.9 REQUIRED COMPONENTS Interpreter)

  # library_host_test(test host filter label...): `host` is a name that ships or a file of hosts/. What a
  # test changes is there as long as its run.
  function(library_host_test test host filter)
    set(place "${host}")
    if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/hosts/${host}.json")
      set(place "${CMAKE_CURRENT_SOURCE_DIR}/hosts/${host}.json")
    endif()
    add_test(NAME library.${test}
      COMMAND "${tolk_simulator}" --host ${place} -- $<TARGET_FILE:library_tests> "--gtest_filter=${filter}")
    set_tests_properties(library.${test} PROPERTIES LABELS "${ARGN}" TIMEOUT 120)
  endfunction()
  library_host_test(bare bare "BareHost*" library)
  library_host_test(broken broken "BrokenHost*" library)
  library_host_test(changes values "ChangedHost*" library)
  library_host_test(closed closed "ClosedHost*" library)
  library_host_test(counters values "CountersHost*" library)
  library_host_test(division kinds "DividedHost*" library)
  library_host_test(families families "FamiliesHost*" library)
  library_host_test(future future "FutureHost*" library)
  library_host_test(guest guest "GuestHost*" library)
  library_host_test(guests guests "GuestsHost*" library)
  library_host_test(kinds kinds "*KindsHost*" library)
  library_host_test(kinds_guests kinds-guests "*KindsGuestsHost*" library)
  library_host_test(kinds_vgpus vgpus "*KindsVgpusHost*" library)
  library_host_test(legacy legacy "LegacyHost*" library)
  library_host_test(mpc mpc "MpcHost*" library)
  library_host_test(no_events no-events "NoFolderHost*" library)
  library_host_test(none none "NoneHost*" library)
  library_host_test(older older "OlderHost*" library)
  library_host_test(old old "OldHost*" library)
  library_host_test(server server "ServerHost*" library threads)
  library_host_test(vgpu_threads vgpus "VgpusHostThreads*" library threads)
  library_host_test(silent silent "SilentHost*" library)
  library_host_test(target target "TargetHost*" library)
  library_host_test(topology topology "TopologyHost*" library)
  library_host_test(unloaded unloaded "UnloadedHost*" library)
  library_host_test(values values "ValuesHost*" library)
  library_host_test(vgpus vgpus "VgpusHost.*" library)

  # Only ThreadSanitizer sees more when it looks on for longer.
  if(NOT TOLK_SANITIZE MATCHES "thread")
    set_tests_properties(library.server library.vgpu_threads PROPERTIES ENVIRONMENT LUMO_TEST_SECONDS=2)
  endif()

  add_test(NAME library.plain_c COMMAND "${tolk_simulator}" --host bare -- $<TARGET_FILE:library_plain_c_test>)
  set_tests_properties(library.plain_c PROPERTIES LABELS library TIMEOUT 120)

  # What every function is tested for.
  add_test(NAME library.uncalled
    COMMAND Python3::Interpreter -IS "${CMAKE_CURRENT_SOURCE_DIR}/uncalled.py"
      "${PROJECT_SOURCE_DIR}/lumo/include/lumo.h" "${CMAKE_CURRENT_SOURCE_DIR}")
  set_tests_properties(library.uncalled PROPERTIES LABELS library TIMEOUT 60)

  # What drivers of several ages make of the same GPUs.
  add_test(NAME library.across_drivers
    COMMAND Python3::Interpreter -IS "${CMAKE_CURRENT_SOURCE_DIR}/across_drivers.py"
      --simulator ${tolk_simulator} --host "${CMAKE_CURRENT_SOURCE_DIR}/hosts/ages.json"
      --table "${CMAKE_CURRENT_SOURCE_DIR}/across_drivers.txt" $<TARGET_FILE:library_answers>)
  set_tests_properties(library.across_drivers PROPERTIES LABELS library TIMEOUT 120)

  # Each access fails in so many ways, which go by turns.
  set(ways 2)
  foreach(host bare guest mpc vgpu-host)
    add_test(NAME library.faults_${host}
      COMMAND Python3::Interpreter -IS "${CMAKE_CURRENT_SOURCE_DIR}/fault_walk.py"
        --simulator ${tolk_simulator} --host ${host} --ways ${ways} $<TARGET_FILE:library_walk>)
    set_tests_properties(library.faults_${host} PROPERTIES LABELS library TIMEOUT 900)
  endforeach()
endif()
