# Makes the film library that the program is shipped with: two tables, no film, the materials of materials.txt.
#   cmake -DMDBTOOL=... -DMATERIALS=... -DLIBRARY=... -P MakeLibrary.cmake
file(STRINGS ${MATERIALS} lines REGEX "^[^#]" ENCODING UTF-8)
set(script "")
foreach(line IN LISTS lines)
  if(NOT line MATCHES "^([^ ]+) +([0-9.]+) +([0-9.]+)$")
    message(FATAL_ERROR "materials.txt: \"${line}\" is no material")
  endif()
  string(APPEND script "insert\tMaterial\tMaterial=${CMAKE_MATCH_1}\tDensity=${CMAKE_MATCH_2}\tZFactor=${CMAKE_MATCH_3}\n")
endforeach()
file(WRITE ${LIBRARY}.txt "${script}")
file(REMOVE ${LIBRARY})
execute_process(COMMAND ${MDBTOOL} new ${LIBRARY} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${MDBTOOL} apply ${LIBRARY} INPUT_FILE ${LIBRARY}.txt COMMAND_ERROR_IS_FATAL ANY)
