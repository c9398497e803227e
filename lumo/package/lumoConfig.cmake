include("${CMAKE_CURRENT_LIST_DIR}/lumoTargets.cmake")
