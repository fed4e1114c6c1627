# The example in README is C99 without a warning, builds, and says that all went well.

cmake_minimum_required(VERSION 3.25)

file(READ ${README} text)
if(NOT text MATCHES "\n```c\n(.*return rvxGetErrStatus[^`]*)```")
    message(FATAL_ERROR "no example found")
endif()
file(WRITE ${WORK}/readme.c "${CMAKE_MATCH_1}")
execute_process(COMMAND ${C_COMPILER} -std=c99 -Wall -Wextra -Werror -I${INCLUDE}
    ${WORK}/readme.c -o ${WORK}/readme ${LIBRARY} -lm COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${WORK}/readme OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
if(NOT output MATCHES "^No Error: -?[0-9]+\\.[0-9] -?[0-9]+\\.[0-9]\n$")
    message(FATAL_ERROR "it printed: ${output}")
endif()
message("${output}")
