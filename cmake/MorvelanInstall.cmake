# Installs the libraries and their headers and exports a CMake package, so
# that another project can find_package(MorvelanCommon) and link
# Morvelan::MorvelanCommon.
include(CMakePackageConfigHelpers)

install(TARGETS Yr InputOutput MorvelanCommon
    EXPORT MorvelanCommonTargets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS morvelan RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

foreach(folder Yr InputOutput Common)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/${folder}
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/Morvelan
        FILES_MATCHING PATTERN "*.h")
endforeach()

set(config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/MorvelanCommon)
install(EXPORT MorvelanCommonTargets NAMESPACE Morvelan:: DESTINATION ${config_dir})
configure_package_config_file(cmake/MorvelanCommonConfig.cmake.in
    ${PROJECT_BINARY_DIR}/MorvelanCommonConfig.cmake INSTALL_DESTINATION ${config_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/MorvelanCommonConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/MorvelanCommonConfig.cmake
    ${PROJECT_BINARY_DIR}/MorvelanCommonConfigVersion.cmake DESTINATION ${config_dir})
