# vantry_warnings(target): the project's warnings, as errors, for code that we wrote ourselves.
function(vantry_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
endfunction()
