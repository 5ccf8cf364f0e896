# The Wine test bench: one throwaway prefix per ctest run, copied from a
# template made once per build tree, with one persistent wineserver and a
# display. tools/wine-bench does the work; these fixtures order it.
set(CORVANE_WINE_DIR ${CMAKE_BINARY_DIR}/wine)

function(corvane_wine_bench_fixture)
  add_test(NAME wine_bench_setup
           COMMAND ${PROJECT_SOURCE_DIR}/tools/wine-bench setup ${CORVANE_WINE_DIR})
  set_tests_properties(wine_bench_setup PROPERTIES FIXTURES_SETUP wine TIMEOUT 300)
  add_test(NAME wine_bench_cleanup
           COMMAND ${PROJECT_SOURCE_DIR}/tools/wine-bench cleanup ${CORVANE_WINE_DIR})
  set_tests_properties(wine_bench_cleanup PROPERTIES FIXTURES_CLEANUP wine)
endfunction()

# corvane_add_wine_test(NAME <name> COMMAND <target> [args...] [RESOURCE_LOCK <locks...>])
# The target runs under tools/wine-run (the cross-compiling emulator) in the run's prefix.
function(corvane_add_wine_test)
  cmake_parse_arguments(ARG "" "NAME;TIMEOUT" "COMMAND;RESOURCE_LOCK" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 300)
  endif()
  add_test(NAME ${ARG_NAME} COMMAND ${ARG_COMMAND})
  set_tests_properties(${ARG_NAME} PROPERTIES
    FIXTURES_REQUIRED wine
    ENVIRONMENT "CORVANE_WINE_DIR=${CORVANE_WINE_DIR}"
    TIMEOUT ${ARG_TIMEOUT})
  if(ARG_RESOURCE_LOCK)
    set_tests_properties(${ARG_NAME} PROPERTIES RESOURCE_LOCK "${ARG_RESOURCE_LOCK}")
  endif()
endfunction()
