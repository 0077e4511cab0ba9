# cmake -DNM=nm -DLIBRARY=libkez.so -DHEADER=kez.h -P CheckExports.cmake
#
# Fails unless every function that kez.h declares (every "kez_name(") is a
# defined, exported text symbol of the library.
file(READ ${HEADER} header)
string(REGEX MATCHALL "kez_[A-Za-z_]+\\(" calls "${header}")
set(names "")
foreach(call ${calls})
  string(REPLACE "(" "" name "${call}")
  list(APPEND names ${name})
endforeach()
list(REMOVE_DUPLICATES names)
list(LENGTH names count)
if(count LESS 10)
  message(FATAL_ERROR "found only ${count} functions in ${HEADER}: ${names}")
endif()

execute_process(COMMAND ${NM} -D --defined-only ${LIBRARY}
  OUTPUT_VARIABLE symbols RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${NM} failed on ${LIBRARY}")
endif()

set(missing "")
foreach(name ${names})
  if(NOT symbols MATCHES "[0-9a-fA-F]+ T ${name}\n")
    list(APPEND missing ${name})
  endif()
endforeach()
if(missing)
  message(FATAL_ERROR "not exported by ${LIBRARY}: ${missing}")
endif()
message(STATUS "${count} functions exported: ${names}")
