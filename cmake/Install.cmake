include(CMakePackageConfigHelpers)

set(TUL_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/TulUtilGui)

install(
    TARGETS tul-util tul-util-gui
    EXPORT TulUtilGuiTargets
    LIBRARY
        DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT Runtime
        NAMELINK_COMPONENT Development
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT Development
)
install(
    EXPORT TulUtilGuiTargets
    NAMESPACE Tul::
    DESTINATION ${TUL_PACKAGE_DIR}
    COMPONENT Development
)

configure_package_config_file(
    ${CMAKE_CURRENT_LIST_DIR}/TulUtilGuiConfig.cmake.in
    ${PROJECT_BINARY_DIR}/TulUtilGuiConfig.cmake
    INSTALL_DESTINATION ${TUL_PACKAGE_DIR}
)
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/TulUtilGuiConfigVersion.cmake
    COMPATIBILITY SameMinorVersion
)
# Relative, so that the prefix may be chosen when installing.
file(RELATIVE_PATH TUL_PREFIX_FROM_PKGCONFIG /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(
    ${CMAKE_CURRENT_LIST_DIR}/tul-util-gui.pc.in
    ${PROJECT_BINARY_DIR}/tul-util-gui.pc
    @ONLY
)
install(
    FILES
        ${PROJECT_BINARY_DIR}/TulUtilGuiConfig.cmake
        ${PROJECT_BINARY_DIR}/TulUtilGuiConfigVersion.cmake
    DESTINATION ${TUL_PACKAGE_DIR}
    COMPONENT Development
)
install(
    FILES ${PROJECT_BINARY_DIR}/tul-util-gui.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT Development
)
