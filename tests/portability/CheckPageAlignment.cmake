# cmake -DREADELF=... -DLIBRARY=... -P CheckPageAlignment.cmake
#
# Fails unless every LOAD segment of LIBRARY is aligned to 16 KB (0x4000), so
# that it loads on devices with 16 KB memory pages.
execute_process(COMMAND ${READELF} -lW ${LIBRARY}
  OUTPUT_VARIABLE headers RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "${READELF} failed on ${LIBRARY}")
endif()
string(REGEX MATCHALL "\n *LOAD[^\n]*" loads "${headers}")
list(LENGTH loads count)
if(count EQUAL 0)
  message(FATAL_ERROR "no LOAD segments in ${LIBRARY}")
endif()
foreach(load ${loads})
  if(NOT load MATCHES "0x4000$")
    message(FATAL_ERROR "segment not aligned to 16 KB:${load}")
  endif()
endforeach()
message(STATUS "${count} LOAD segments aligned to 0x4000")
