# One CTest test for each suite of a GoogleTest executable, found by asking the executable itself once it is built.
# One for each single test would start a process a thousand times over, which under a sanitizer takes longer than all
# the tests.
#
#   discover_suites(<target> <label>)
function(discover_suites target label)
  set(tests ${CMAKE_CURRENT_BINARY_DIR}/${target}_suites.cmake)
  add_custom_command(
    TARGET ${target} POST_BUILD BYPRODUCTS ${tests}
    COMMAND ${CMAKE_COMMAND} -D executable=$<TARGET_FILE:${target}> -D label=${label} -D tests=${tests}
            -P ${PROJECT_SOURCE_DIR}/cmake/ListSuites.cmake
    VERBATIM)
  # A build of another target leaves this one's tests out.
  set(included ${CMAKE_CURRENT_BINARY_DIR}/${target}_include.cmake)
  file(WRITE ${included} "if(EXISTS \"${tests}\")\n  include(\"${tests}\")\nendif()\n")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${included})
endfunction()
