# Warnings are errors in our own code; third-party code keeps its own settings.
function(qb_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wno-unused-parameter -Werror)
endfunction()
