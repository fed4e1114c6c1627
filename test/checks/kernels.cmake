# Each kernel's name is used once in the whole library. The function that picks
# an instruction set is named after its kernel, and one compiler makes that name
# global even where the kernel is not: of two alike the link fails, or one is lost.

cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${NM} ${ARCHIVE}
    OUTPUT_VARIABLE symbols ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[A-Za-z0-9_]+\\.resolver" resolvers "${symbols}")
list(LENGTH resolvers count)
if(count EQUAL 0)
    message(FATAL_ERROR "no kernel found")
endif()
while(resolvers)
    list(POP_FRONT resolvers resolver)
    if(resolver IN_LIST resolvers)
        message(SEND_ERROR "two kernels are named alike: ${resolver}")
    endif()
endwhile()
message("${count} kernels")
