# Sanitizer builds. QB_SANITIZE instruments everything for the test suite; QB_LIBFUZZER adds
# libFuzzer's coverage to everything, and the fuzz targets link the fuzzer itself (fuzz/).
# UBSan findings stop the program, so that ctest and libFuzzer both see them as failures.
if(QB_LIBFUZZER)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "QB_LIBFUZZER needs clang (the fuzz preset uses clang++-14)")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
elseif(QB_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()
