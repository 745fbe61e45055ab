# Our own pictures (resources/pictures/NAME.txt) compiled into the program as their text, so that
# every host, the web player too, has them without files; src/pictures/ResourcePicture.cpp reads
# the text at first use.
#
# Included from src/CMakeLists.txt after qbcore is defined, it adds the generated source to qbcore.
# Run as a script (cmake -DINPUT_DIR=... -DOUTPUT=... -P EmbedPictures.cmake) it writes that source.
if(NOT CMAKE_SCRIPT_MODE_FILE)
  file(GLOB QB_PICTURE_FILES CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/resources/pictures/*.txt")
  set(QB_PICTURES_CPP "${CMAKE_CURRENT_BINARY_DIR}/generated/ResourcePictureData.cpp")
  add_custom_command(
    OUTPUT "${QB_PICTURES_CPP}"
    COMMAND ${CMAKE_COMMAND} -DINPUT_DIR=${CMAKE_SOURCE_DIR}/resources/pictures
            -DOUTPUT=${QB_PICTURES_CPP} -P ${CMAKE_CURRENT_LIST_FILE}
    DEPENDS ${QB_PICTURE_FILES} ${CMAKE_CURRENT_LIST_FILE}
    COMMENT "Embedding the pictures")
  target_sources(qbcore PRIVATE "${QB_PICTURES_CPP}")
  return()
endif()

# Each file becomes one raw string literal; the delimiter must not occur in a picture's text.
set(delimiter ")qbpicture\"")
file(GLOB files "${INPUT_DIR}/*.txt")
list(SORT files)
set(body "")
foreach(path IN LISTS files)
  get_filename_component(name "${path}" NAME_WE)
  if(NOT name MATCHES "^[a-z0-9_-]+$")
    message(FATAL_ERROR "${path}: picture names are lower-case letters, digits, '_' and '-'")
  endif()
  file(READ "${path}" text)
  string(FIND "${text}" "${delimiter}" clash)
  if(NOT clash EQUAL -1)
    message(FATAL_ERROR "${path}: the text holds the literal's delimiter")
  endif()
  string(APPEND body "    {\"${name}\", R\"qbpicture(${text})qbpicture\"},\n")
endforeach()
file(WRITE "${OUTPUT}.tmp" "// Generated from resources/pictures/*.txt.\n#include \"pictures/ResourcePicture.h\"\n\nconst EmbeddedPicture kEmbeddedPictures[] = {\n${body}    {nullptr, nullptr},\n};\n")
file(COPY_FILE "${OUTPUT}.tmp" "${OUTPUT}" ONLY_IF_DIFFERENT)
file(REMOVE "${OUTPUT}.tmp")
