# A plain C program built by what pkg-config says: with the shared library, with
# the static one, and as a program that is static altogether.

cmake_minimum_required(VERSION 3.25)

set(ENV{PKG_CONFIG_PATH} ${WORK}/tree/${LIBDIR}/pkgconfig)

function(ask variable)
    execute_process(COMMAND ${PKG_CONFIG} ${ARGN} rvx OUTPUT_VARIABLE answer
        OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    separate_arguments(answer UNIX_COMMAND "${answer}")
    set(${variable} ${answer} PARENT_SCOPE)
endfunction()

# build_and_run(PROGRAM FLAGS...): C99 without a warning.
function(build_and_run program)
    execute_process(COMMAND ${C_COMPILER} -std=c99 -pedantic -Wall -Wextra -Werror
        ${CMAKE_CURRENT_LIST_DIR}/plain_c/main.c -o ${WORK}/${program} ${ARGN}
        COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${WORK}/tree/${LIBDIR}
        ${WORK}/${program} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

execute_process(COMMAND ${PKG_CONFIG} --atleast-version=1.0 rvx COMMAND_ERROR_IS_FATAL ANY)
ask(cflags --cflags)
ask(libs --libs)
ask(staticLibs --libs --static)

build_and_run(consumer_c ${cflags} ${libs})
build_and_run(consumer_c_archive ${cflags} ${WORK}/tree/${LIBDIR}/librvx.a -lm)
build_and_run(consumer_c_static -static ${cflags} ${staticLibs})
