# Every source file is as clang-format leaves it.

cmake_minimum_required(VERSION 3.25)

file(GLOB_RECURSE sources
    ${SOURCE}/include/*.h ${SOURCE}/_SRC/*.h ${SOURCE}/_SRC/*.cpp
    ${SOURCE}/test/*.h ${SOURCE}/test/*.cpp ${SOURCE}/test/*.c
    ${SOURCE}/bench/*.h ${SOURCE}/bench/*.cpp
    ${SOURCE}/examples/*.h ${SOURCE}/examples/*.cpp)
execute_process(COMMAND ${CLANG_FORMAT} --dry-run -Werror ${sources} RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "run clang-format -i on the files above")
endif()
