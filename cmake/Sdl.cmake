# The desktop window: SDL2 behind src/platform/sdl/, a library of its own that only native programs
# link. The core and the web build never see SDL.
find_package(SDL2 CONFIG QUIET)
if(NOT TARGET SDL2::SDL2)
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(QB_SDL2 REQUIRED IMPORTED_TARGET sdl2)
  add_library(SDL2::SDL2 ALIAS PkgConfig::QB_SDL2)
endif()

file(GLOB QB_SDL_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/platform/sdl/*.cpp)
add_library(qb_sdl STATIC ${QB_SDL_SOURCES})
target_link_libraries(qb_sdl PUBLIC qbcore PRIVATE SDL2::SDL2)
# Code that may use the backend (the player, its tests) asks for it by this definition.
target_compile_definitions(qb_sdl INTERFACE QB_WITH_SDL=1)
qb_warnings(qb_sdl)
