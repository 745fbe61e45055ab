# Warnings are errors in our own code; third-party code keeps its own settings. The web build
# compiles with clang, which finds more than g++ by default: g++ is asked for the same findings,
# so that code that passes in one build passes in all of them.
function(qb_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wno-unused-parameter -Werror)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -Wunused-const-variable=1)
  endif()
endfunction()
