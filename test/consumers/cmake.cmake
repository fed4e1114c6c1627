# A C++ project that finds the package: it builds and runs, with the shared and
# with the static library, and a version that is not installed is not found.

cmake_minimum_required(VERSION 3.25)

set(configure ${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/cmake
    -G ${GENERATOR} -DCMAKE_MAKE_PROGRAM=${MAKE_PROGRAM}
    -DCMAKE_C_COMPILER=${C_COMPILER} -DCMAKE_CXX_COMPILER=${CXX_COMPILER}
    -DCMAKE_PREFIX_PATH=${WORK}/tree)

file(REMOVE_RECURSE ${WORK}/cmake)
execute_process(COMMAND ${configure} -B ${WORK}/cmake COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK}/cmake COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${WORK}/cmake/consumer COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${WORK}/cmake/consumer_static COMMAND_ERROR_IS_FATAL ANY)

foreach(version 1.1 2.0)
    file(REMOVE_RECURSE ${WORK}/cmake)
    execute_process(COMMAND ${configure} -B ${WORK}/cmake -DWANTED=${version}
        RESULT_VARIABLE result OUTPUT_QUIET ERROR_VARIABLE errors)
    if(result EQUAL 0)
        message(FATAL_ERROR "version ${version} was found, which is not there")
    endif()
    if(NOT errors MATCHES "requested version")
        message(FATAL_ERROR "version ${version} failed for another reason:\n${errors}")
    endif()
endforeach()
