# The library's assertions, and those in the generated setters, end the process in every build type.
foreach(type DEBUG RELEASE RELWITHDEBINFO MINSIZEREL)
  string(REGEX REPLACE "[-/]D *NDEBUG" "" CMAKE_CXX_FLAGS_${type} "${CMAKE_CXX_FLAGS_${type}}")
endforeach()
# Behind all other flags, since the builder's own may ask for it.
add_compile_options(-UNDEBUG)
