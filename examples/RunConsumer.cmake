# Installs the built library into a folder of the build tree, configures and builds the
# consumer example against that installation alone, runs it on its script and compares what it
# prints. Arguments: BUILD (the build tree), SOURCE (examples/consumer), WORK (a scratch
# folder), COMPILER and FLAGS (the build's own, so that a sanitized library links).
file(REMOVE_RECURSE ${WORK})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/install
    RESULT_VARIABLE result OUTPUT_QUIET)
if(result)
    message(FATAL_ERROR "installing the library failed: ${result}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/build -G Ninja
        -DCMAKE_PREFIX_PATH=${WORK}/install -DCMAKE_CXX_COMPILER=${COMPILER}
        "-DCMAKE_CXX_FLAGS=${FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${FLAGS}"
    RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(result)
    message(FATAL_ERROR "configuring the consumer failed:\n${out}${err}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK}/build
    RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(result)
    message(FATAL_ERROR "building the consumer failed:\n${out}${err}")
endif()
execute_process(COMMAND ${WORK}/build/consumer ${SOURCE}/greetings.reel
    RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
set(expected "{\"greeting\":\"Hello, Ada\"}\n{\"greeting\":\"Hello, Grace\"}\n")
if(result OR NOT out STREQUAL expected)
    message(FATAL_ERROR "the consumer ended with ${result} and printed:\n${out}\n${err}")
endif()
# The installed host opens the plug-in modules installed beside it, not the build tree's.
execute_process(COMMAND ${CMAKE_COMMAND} -E env LD_DEBUG=libs
        ${WORK}/install/bin/reelsmith runtime --require=engine
    RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(result OR NOT err MATCHES "calling init: ${WORK}/install/bin/[^\n]*/plugins/DecodersFF.so")
    message(FATAL_ERROR "the installed host ended with ${result} and opened:\n${err}")
endif()
