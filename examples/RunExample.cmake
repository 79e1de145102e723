# Runs one example script through the host and compares its stdout, as sorted lines, with the
# expected file. The first line of the expected file may hold the host's arguments after
# "# arguments:".
file(STRINGS ${EXPECTED} expectedLines)
set(arguments "")
list(GET expectedLines 0 firstLine)
if(firstLine MATCHES "^# arguments: (.*)$")
    separate_arguments(arguments UNIX_COMMAND "${CMAKE_MATCH_1}")
    list(REMOVE_AT expectedLines 0)
endif()
execute_process(COMMAND ${HOST} script ${SCRIPT} ${arguments}
    OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "${SCRIPT} exited with ${status}:\n${errors}")
endif()
string(REGEX REPLACE "\n$" "" output "${output}")
string(REPLACE "\n" ";" outputLines "${output}")
list(SORT outputLines)
list(SORT expectedLines)
if(NOT outputLines STREQUAL expectedLines)
    string(REPLACE ";" "\n" got "${outputLines}")
    string(REPLACE ";" "\n" want "${expectedLines}")
    message(FATAL_ERROR "${SCRIPT} printed, sorted:\n${got}\nexpected, sorted:\n${want}")
endif()
