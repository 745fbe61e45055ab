# Libraries come from Debian packages. The web build cannot see /usr/include, so the header-only
# ones are reached through a folder of links made here, and GoogleTest is compiled from its source.
if(QB_WEB)
  set(QB_WEB_INCLUDE "${CMAKE_BINARY_DIR}/web-include")
  file(MAKE_DIRECTORY "${QB_WEB_INCLUDE}")
  foreach(dir fmt nlohmann)
    if(EXISTS "/usr/include/${dir}" AND NOT EXISTS "${QB_WEB_INCLUDE}/${dir}")
      file(CREATE_LINK "/usr/include/${dir}" "${QB_WEB_INCLUDE}/${dir}" SYMBOLIC)
    endif()
  endforeach()
  add_library(qb_fmt INTERFACE)
  target_include_directories(qb_fmt SYSTEM INTERFACE "${QB_WEB_INCLUDE}")
  # The player formats no number by the reader's locale, and without std::locale libc++'s locale
  # facets stay out of the wasm.
  target_compile_definitions(qb_fmt INTERFACE
    FMT_HEADER_ONLY=1 "FMT_STATIC_THOUSANDS_SEPARATOR=','")
  set(gtest_force_shared_crt ON CACHE BOOL "" FORCE)
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  # GoogleTest's own CMake names its targets GTest::gtest, GTest::gtest_main, GTest::gmock.
  add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
else()
  find_package(fmt REQUIRED)
  add_library(qb_fmt INTERFACE)
  target_link_libraries(qb_fmt INTERFACE fmt::fmt-header-only)
  find_package(GTest REQUIRED)
endif()
