# Every file that a page of the documentation points to is there.

cmake_minimum_required(VERSION 3.25)

file(GLOB_RECURSE pages ${SOURCE}/docs/*.md ${SOURCE}/examples/*.md)
list(APPEND pages ${SOURCE}/README.md ${SOURCE}/CHANGELOG.md)
foreach(page IN LISTS pages)
    get_filename_component(directory ${page} DIRECTORY)
    file(READ ${page} text)
    # Brackets would join what CMake takes for a list.
    string(REPLACE "[" "(" text "${text}")
    string(REPLACE "]" ")" text "${text}")
    string(REGEX MATCHALL "\\)\\([^)\n ]+\\)" links "${text}")
    foreach(link IN LISTS links)
        string(REGEX REPLACE "^\\)\\(([^)#]*).*$" "\\1" target "${link}")
        if(target STREQUAL "" OR target MATCHES "^https?://")
            continue()
        endif()
        if(NOT EXISTS ${directory}/${target})
            message(SEND_ERROR "${page} points to ${target}, which is not there")
        endif()
    endforeach()
endforeach()
