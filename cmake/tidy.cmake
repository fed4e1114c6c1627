# The target "tidy" looks at every source with clang-tidy, as .clang-tidy says. It
# is there in builds by Clang, whose flags clang-tidy understands.

find_program(CLANG_TIDY clang-tidy)
if(NOT CLANG_TIDY OR NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    return()
endif()

file(GLOB sources CONFIGURE_DEPENDS _SRC/*/rvx*.cpp)
file(GLOB headers CONFIGURE_DEPENDS _SRC/*/rvx*.h include/rvx.h)
list(FILTER sources EXCLUDE REGEX "_win\\.cpp$")

# How far the analyzer follows the paths through one function. Its own choice,
# 225000, takes four times as long; clang-tidy called by hand has that.
set(depth -Xclang -analyzer-config -Xclang max-nodes=50000)
list(TRANSFORM depth PREPEND --extra-arg=)

set(stamps)
foreach(source IN LISTS sources)
    get_filename_component(name ${source} NAME_WE)
    set(stamp ${PROJECT_BINARY_DIR}/tidy/${name}.stamp)
    add_custom_command(OUTPUT ${stamp}
        COMMAND ${CLANG_TIDY} --quiet ${depth} -p ${PROJECT_BINARY_DIR} ${source}
        COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
        DEPENDS ${source} ${headers} ${PROJECT_SOURCE_DIR}/.clang-tidy
        COMMENT "Looking at ${name}.cpp"
        VERBATIM)
    list(APPEND stamps ${stamp})
endforeach()
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/tidy)
add_custom_target(tidy DEPENDS ${stamps})
