# cmake -DEMULATOR=a|b|c -DCROSS_DUMP=... -DNATIVE_DUMP=... -DLOG=... -DOUT_DIR=...
#       -P CompareDumps.cmake
#
# Runs kez-forecast-dump of the native build and of the cross build (under the
# emulator) on LOG, with the adaptive forecaster's forecasts and weights, and
# fails unless both print the same bytes.
string(REPLACE "|" ";" EMULATOR "${EMULATOR}")
if(NOT EXISTS "${LOG}")
  message(FATAL_ERROR "log not found: ${LOG}")
endif()
execute_process(COMMAND ${NATIVE_DUMP} --adaptive ${LOG}
  OUTPUT_FILE ${OUT_DIR}/forecast-native.txt RESULT_VARIABLE native_rc)
execute_process(COMMAND ${EMULATOR} ${CROSS_DUMP} --adaptive ${LOG}
  OUTPUT_FILE ${OUT_DIR}/forecast-cross.txt RESULT_VARIABLE cross_rc)
if(NOT native_rc EQUAL 0 OR NOT cross_rc EQUAL 0)
  message(FATAL_ERROR "dump failed: native ${native_rc}, cross ${cross_rc}")
endif()
file(STRINGS ${OUT_DIR}/forecast-native.txt steps REGEX "^step ")
list(LENGTH steps step_count)
if(step_count EQUAL 0)
  message(FATAL_ERROR "the native dump holds no forecast steps")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files
  ${OUT_DIR}/forecast-native.txt ${OUT_DIR}/forecast-cross.txt
  RESULT_VARIABLE differ)
if(NOT differ EQUAL 0)
  message(FATAL_ERROR "forecasts differ between the machines; see "
    "${OUT_DIR}/forecast-native.txt and ${OUT_DIR}/forecast-cross.txt")
endif()
message(STATUS "${step_count} forecast steps bit-identical")
