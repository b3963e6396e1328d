# The package that outside projects find with find_package(fathom CONFIG REQUIRED).

include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/fathom")

configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/fathomConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/cmake/fathomConfig.cmake"
    INSTALL_DESTINATION "${package_dir}"
    NO_SET_AND_CHECK_MACRO)

# Before 1.0 a new minor version may change the interface.
write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/cmake/fathomConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)

install(FILES
    "${PROJECT_BINARY_DIR}/cmake/fathomConfig.cmake"
    "${PROJECT_BINARY_DIR}/cmake/fathomConfigVersion.cmake"
    "${PROJECT_SOURCE_DIR}/cmake/FathomObjectLibrary.cmake"
    DESTINATION "${package_dir}")

install(EXPORT fathomTargets NAMESPACE fathom:: DESTINATION "${package_dir}")
