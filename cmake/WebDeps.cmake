# C libraries with one name on every host: qb_jpeg (libjpeg-turbo, format 3 card pictures) and
# qb_freetype (FreeType, glyphs). Natively they are Debian's packages; the web build links the
# static wasm builds that scripts/build-web-deps.sh makes from Debian's source packages.
if(QB_WEB)
  set(QB_WEB_DEPS_PREFIX "${CMAKE_SOURCE_DIR}/build/web-deps/prefix" CACHE PATH
      "Install prefix of the libraries scripts/build-web-deps.sh builds for the web")

  function(qb_web_library target library include_dir)
    set(file "${QB_WEB_DEPS_PREFIX}/lib/${library}")
    if(NOT EXISTS "${file}")
      message(FATAL_ERROR "${file} is missing: run scripts/build-web-deps.sh first (make test-wasm does)")
    endif()
    add_library(${target} STATIC IMPORTED GLOBAL)
    set_target_properties(${target} PROPERTIES
      IMPORTED_LOCATION "${file}"
      INTERFACE_INCLUDE_DIRECTORIES "${include_dir}")
  endfunction()

  qb_web_library(qb_jpeg libjpeg.a "${QB_WEB_DEPS_PREFIX}/include")
  qb_web_library(qb_freetype libfreetype.a "${QB_WEB_DEPS_PREFIX}/include/freetype2")
else()
  find_package(JPEG REQUIRED)
  find_package(Freetype REQUIRED)
  add_library(qb_jpeg INTERFACE IMPORTED GLOBAL)
  set_target_properties(qb_jpeg PROPERTIES INTERFACE_LINK_LIBRARIES JPEG::JPEG)
  add_library(qb_freetype INTERFACE IMPORTED GLOBAL)
  set_target_properties(qb_freetype PROPERTIES INTERFACE_LINK_LIBRARIES Freetype::Freetype)
endif()
