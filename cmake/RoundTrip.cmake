# A stack built from its description, opened through the full open flow and saved through the full
# writer, must come back byte for byte. Called as:
# cmake -DQB=quillbrook -DJSON=... -DWORK=dir -P RoundTrip.cmake
get_filename_component(name "${JSON}" NAME_WE)
set(built "${WORK}/${name}.stk")
set(saved "${WORK}/${name}-resaved.stk")
file(MAKE_DIRECTORY "${WORK}")
execute_process(COMMAND "${QB}" build "${JSON}" -o "${built}" RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "build of ${JSON} failed")
endif()
execute_process(COMMAND "${QB}" resave "${built}" -o "${saved}" RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "resave of ${built} failed")
endif()
execute_process(COMMAND "${CMAKE_COMMAND}" -E compare_files "${built}" "${saved}" RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "${saved} differs from ${built}")
endif()
