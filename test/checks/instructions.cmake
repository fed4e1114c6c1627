# No fused multiply-add in LIBRARY: it would give other bits on machines that
# have it. Also that the kernels are there for the wider instruction set.

cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${OBJDUMP} --disassemble --no-show-raw-insn ${LIBRARY}
    OUTPUT_VARIABLE code COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[ \t]vfn?m[a-z0-9]+[^\n]*" fused "${code}")
if(fused)
    list(LENGTH fused count)
    list(GET fused 0 first)
    message(SEND_ERROR "${count} fused instructions, such as ${first}")
endif()
if(NOT code MATCHES "%ymm")
    message(SEND_ERROR "no instruction with 256-bit registers: are the kernels dispatched?")
endif()
if(code MATCHES "%zmm")
    message(SEND_ERROR "instructions with 512-bit registers")
endif()
