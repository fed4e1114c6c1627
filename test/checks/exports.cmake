# The dynamic symbols of LIBRARY, the export list MAP and the functions declared
# in HEADER are the same names, 215 of them.

cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${NM} -D --defined-only ${LIBRARY}
    OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL " [A-Za-z] [^\n]+" exported "${symbols}")
list(TRANSFORM exported REPLACE "^ [A-Za-z] " "")

file(READ ${MAP} map)
string(REGEX MATCHALL " rvx[A-Za-z0-9_]+" listed "${map}")
list(TRANSFORM listed STRIP)

file(READ ${HEADER} header)
string(REGEX MATCHALL "RVX_API [A-Za-z][^(;]*\\(" declared "${header}")
list(TRANSFORM declared REPLACE "^.*[ *]([A-Za-z0-9_]+)\\($" "\\1")

function(report_difference what extra missing)
    set(only ${extra})
    list(REMOVE_ITEM only ${missing})
    if(only)
        list(JOIN only " " only)
        message(SEND_ERROR "${what}: ${only}")
    endif()
endfunction()

list(LENGTH listed count)
if(NOT count EQUAL 215)
    message(SEND_ERROR "${count} names in the export list instead of 215")
endif()
report_difference("exported, not in the export list" "${exported}" "${listed}")
report_difference("in the export list, not exported" "${listed}" "${exported}")
report_difference("exported, not declared in the header" "${listed}" "${declared}")
report_difference("declared in the header, not exported" "${declared}" "${listed}")
message("${count} functions")
