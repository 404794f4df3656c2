# Runs doxygen over the public headers and fails when a member of the table, the connection or
# the batch copy is undocumented: cmake -DDOXYGEN=... -DCONFIG=... -DLOG=... -P CheckApiDocs.cmake
execute_process(COMMAND ${DOXYGEN} ${CONFIG} RESULT_VARIABLE result OUTPUT_QUIET ERROR_QUIET)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "doxygen failed (${result})")
endif()
file(STRINGS ${LOG} warnings REGEX "(TCTTable|TCTConnection|TCTBatchCopy)\\.h:[0-9]+: warning")
list(LENGTH warnings count)
if(count GREATER 0)
  list(JOIN warnings "\n" text)
  message(FATAL_ERROR "${count} undocumented members of the table, connection or batch copy:\n${text}")
endif()
message(STATUS "every public member of TCTTable, TCTConnection and TCTBatchCopy is documented")
