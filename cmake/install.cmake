# Installation: header, libraries, CMake package, pkg-config file.

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/rvx)

install(TARGETS rvx rvx_static EXPORT rvxTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${PROJECT_SOURCE_DIR}/include/rvx.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

install(EXPORT rvxTargets NAMESPACE rvx:: DESTINATION ${package})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/rvxConfig.cmake.in
    ${CMAKE_CURRENT_BINARY_DIR}/rvxConfig.cmake
    INSTALL_DESTINATION ${package})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/rvxConfigVersion.cmake
    VERSION ${PROJECT_VERSION}
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/rvxConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/rvxConfigVersion.cmake
    DESTINATION ${package})

# The file says where things are from its own place, so that the installed tree
# can be moved; directories that were given as absolute paths stay where they are.
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR} OR IS_ABSOLUTE ${CMAKE_INSTALL_INCLUDEDIR})
    set(RVX_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
    set(RVX_PC_LIBDIR ${CMAKE_INSTALL_FULL_LIBDIR})
    set(RVX_PC_INCLUDEDIR ${CMAKE_INSTALL_FULL_INCLUDEDIR})
else()
    file(RELATIVE_PATH up "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
    string(REGEX REPLACE "/$" "" up ${up})
    set(RVX_PC_PREFIX "\${pcfiledir}/${up}")
    set(RVX_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
    set(RVX_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/rvx.pc.in ${CMAKE_CURRENT_BINARY_DIR}/rvx.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/rvx.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
