# cmake [-DEMULATOR=a|b] -DDUMP=... [-DARGS=a|b] -DLOG=... -DGOLDEN=... -DOUT=...
#       -P CompareGolden.cmake
#
# Runs kez-forecast-dump ARGS LOG (under the emulator, if any) into OUT and
# fails unless OUT equals GOLDEN byte for byte; then prints the first
# differing lines.
string(REPLACE "|" ";" EMULATOR "${EMULATOR}")
string(REPLACE "|" ";" ARGS "${ARGS}")
foreach(f "${LOG}" "${GOLDEN}")
  if(NOT EXISTS "${f}")
    message(FATAL_ERROR "not found: ${f}")
  endif()
endforeach()
execute_process(COMMAND ${EMULATOR} ${DUMP} ${ARGS} ${LOG}
  OUTPUT_FILE ${OUT} RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "kez-forecast-dump failed: ${rc}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${GOLDEN} ${OUT}
  RESULT_VARIABLE differ)
if(NOT differ EQUAL 0)
  find_program(DIFF diff)
  if(DIFF)
    execute_process(COMMAND ${DIFF} ${GOLDEN} ${OUT} OUTPUT_VARIABLE d)
    string(SUBSTRING "${d}" 0 3000 d)
    message("${d}")
  endif()
  message(FATAL_ERROR "the forecasts differ from ${GOLDEN} (now: ${OUT}); "
    "if the change is meant, make the file again (tests/golden/README.md)")
endif()
file(STRINGS ${OUT} steps REGEX "^step ")
list(LENGTH steps n)
message(STATUS "${n} forecast steps as in ${GOLDEN}")
