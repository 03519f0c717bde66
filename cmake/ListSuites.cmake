# The build's half of DiscoverSuites.cmake: writes an add_test for each suite of `executable` into `tests`.
execute_process(COMMAND ${executable} --gtest_list_tests OUTPUT_VARIABLE listed RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${executable} --gtest_list_tests: ${result}")
endif()

# A suite's line begins at its first column and ends in a dot; those of its tests are indented.
string(REGEX MATCHALL "(^|\n)[A-Za-z0-9_/]+\\." suites "${listed}")
if(NOT suites)
  message(FATAL_ERROR "${executable} has no tests")
endif()
set(code "")
foreach(suite IN LISTS suites)
  string(REGEX REPLACE "[\n.]" "" suite "${suite}")
  string(APPEND code "add_test([=[${label}.${suite}]=] \"${executable}\" \"--gtest_filter=${suite}.*\" --gtest_brief=1)\n"
    "set_tests_properties([=[${label}.${suite}]=] PROPERTIES LABELS ${label} TIMEOUT 300)\n")
endforeach()
file(WRITE ${tests} "${code}")
