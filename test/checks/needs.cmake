# What LIBRARY asks of the machine that it is loaded on: the C and maths libraries
# and nothing else, no relocations in its code, a few bytes of thread-local room.

cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${READELF} --dynamic --wide ${LIBRARY}
    OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "Shared library: \\[[^]]+" needed "${dynamic}")
foreach(library IN LISTS needed)
    if(NOT library MATCHES "\\[(libc|libm|ld-linux-x86-64)\\.so\\.[0-9]+$")
        message(SEND_ERROR "needed at run time: ${library}]")
    endif()
endforeach()
if(dynamic MATCHES "TEXTREL")
    message(SEND_ERROR "text relocations")
endif()
if(dynamic MATCHES "RPATH|RUNPATH")
    message(SEND_ERROR "a run path")
endif()
if(NOT dynamic MATCHES "SONAME[^\n]*\\[librvx\\.so\\.1\\]")
    message(SEND_ERROR "not named librvx.so.1")
endif()

# Undefined: versioned names of the C libraries, and weak ones that may stay so.
execute_process(COMMAND ${NM} -D --undefined-only ${LIBRARY}
    OUTPUT_VARIABLE undefined COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL " U [^\n]+" strong "${undefined}")
foreach(symbol IN LISTS strong)
    if(NOT symbol MATCHES "@GLIBC_")
        message(SEND_ERROR "undefined:${symbol}")
    endif()
endforeach()

# The loader keeps little room for thread-local data of libraries that are loaded
# late, and this one takes its share from there.
execute_process(COMMAND ${READELF} --segments --wide ${LIBRARY}
    OUTPUT_VARIABLE segments COMMAND_ERROR_IS_FATAL ANY)
if(NOT segments MATCHES "\n +TLS +0x[0-9a-f]+ 0x[0-9a-f]+ 0x[0-9a-f]+ 0x[0-9a-f]+ 0x([0-9a-f]+)")
    message(SEND_ERROR "no thread-local segment")
else()
    math(EXPR bytes "0x${CMAKE_MATCH_1}")
    if(bytes GREATER 16)
        message(SEND_ERROR "${bytes} bytes of thread-local data")
    endif()
endif()
