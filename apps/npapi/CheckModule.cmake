# Checks the built module: its dynamic symbol table defines exactly the EXPECTED functions, and its
# version information declares the document type.
find_program(NM nm REQUIRED)
find_program(READELF readelf REQUIRED)

execute_process(COMMAND ${NM} -D --defined-only --format=posix "${MODULE}"
  OUTPUT_VARIABLE symbols RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "nm failed on ${MODULE}")
endif()
string(REPLACE "\n" ";" lines "${symbols}")
set(found "")
foreach(line IN LISTS lines)
  if(line MATCHES "^([^ ]+) ([A-Za-z])")
    string(REGEX REPLACE "@.*$" "" name "${CMAKE_MATCH_1}")
    # The linker's own markers of the image are not exports of ours.
    if(NOT name MATCHES "^(_init|_fini|_edata|_end|__bss_start)$")
      list(APPEND found "${name}")
    endif()
  endif()
endforeach()
list(SORT found)
set(expected ${EXPECTED})
list(SORT expected)
if(NOT found STREQUAL expected)
  message(FATAL_ERROR "Module exports differ.\n  expected: ${expected}\n  found:    ${found}")
endif()

execute_process(COMMAND ${READELF} -p .qbversion "${MODULE}" OUTPUT_VARIABLE dump RESULT_VARIABLE result)
foreach(entry "MIMEType" "Quillbrook|application/qbrk" "FileExtents" "stk|stk" "FileOpenName"
              "Quillbrook (*.stk)|Quillbrook (*.stk)")
  string(FIND "${dump}" "]  ${entry}\n" at)
  if(NOT result EQUAL 0 OR at EQUAL -1)
    message(FATAL_ERROR "The version information lacks \"${entry}\":\n${dump}")
  endif()
endforeach()
