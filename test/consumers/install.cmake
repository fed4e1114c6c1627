# Installs what BUILD built and moves it, so that nothing works by an absolute
# path. With DESTDIR set, the same files come out below that directory.

cmake_minimum_required(VERSION 3.25)

function(list_files variable root)
    file(GLOB_RECURSE files LIST_DIRECTORIES false RELATIVE ${root} ${root}/*)
    set(${variable} "${files}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK}/first ${WORK}/tree ${WORK}/staged)

execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/first
    COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${WORK}/first ${WORK}/tree)

execute_process(COMMAND ${CMAKE_COMMAND} -E env DESTDIR=${WORK}/staged
    ${CMAKE_COMMAND} --install ${BUILD} --prefix /opt/rvx
    COMMAND_ERROR_IS_FATAL ANY)

list_files(moved ${WORK}/tree)
list_files(staged ${WORK}/staged/opt/rvx)
if(NOT moved STREQUAL staged)
    message(FATAL_ERROR "installed:\n${moved}\nbelow DESTDIR:\n${staged}")
endif()
foreach(file include/rvx.h
        ${LIBDIR}/librvx.so ${LIBDIR}/librvx.so.1 ${LIBDIR}/librvx.a
        ${LIBDIR}/cmake/rvx/rvxConfig.cmake ${LIBDIR}/cmake/rvx/rvxConfigVersion.cmake
        ${LIBDIR}/pkgconfig/rvx.pc)
    if(NOT file IN_LIST moved)
        message(SEND_ERROR "not installed: ${file}")
    endif()
endforeach()

file(GLOB_RECURSE texts ${WORK}/tree/*.cmake ${WORK}/tree/*.pc)
foreach(text IN LISTS texts)
    file(READ ${text} content)
    string(FIND "${content}" "${WORK}" place)
    if(NOT place EQUAL -1)
        message(SEND_ERROR "${text} names the directory that it was installed to")
    endif()
endforeach()
