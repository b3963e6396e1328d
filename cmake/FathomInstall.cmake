# Installs the package that find_package(fathom CONFIG REQUIRED) finds.

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
    "${PROJECT_SOURCE_DIR}/${FATHOM_OBJECT_LIBRARY_STAMP}"
    "${PROJECT_SOURCE_DIR}/cmake/hidden-symbols.map"
    DESTINATION "${package_dir}"
    COMPONENT fathom_development)

install(EXPORT fathomTargets
    NAMESPACE fathom::
    DESTINATION "${package_dir}"
    COMPONENT fathom_development)
# Separate files: the libraries' targets must load if the host is not installed.
if(FATHOM_BUILD_HOST)
    install(EXPORT libtarnTargets
        NAMESPACE fathom::
        DESTINATION "${package_dir}"
        COMPONENT libtarn_development)
    install(EXPORT fathomHostTargets
        NAMESPACE fathom::
        DESTINATION "${package_dir}"
        COMPONENT fathom_host)
endif()

# Debian keeps the licence of each package under this name.
set(licensed_packages fathom_runtime=libfathom${FATHOM_ABI_VERSION} fathom_development=libfathom-dev)
if(FATHOM_BUILD_HOST)
    list(APPEND licensed_packages
        libtarn_runtime=libtarn${FATHOM_ABI_VERSION} libtarn_development=libtarn-dev fathom_host=tarn)
endif()
if(FATHOM_BUILD_MPI)
    list(APPEND licensed_packages fathom_mpi=tarn-mpi)
endif()
if(FATHOM_BUILD_PYTHON)
    list(APPEND licensed_packages fathom_python=python3-fathom)
endif()
foreach(package IN LISTS licensed_packages)
    string(REGEX MATCH "^(.*)=(.*)$" package "${package}")
    install(FILES "${PROJECT_SOURCE_DIR}/LICENSE"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${CMAKE_MATCH_2}"
        RENAME copyright
        COMPONENT ${CMAKE_MATCH_1})
endforeach()

install(FILES "${PROJECT_SOURCE_DIR}/CHANGELOG.md"
    DESTINATION "${CMAKE_INSTALL_DOCDIR}"
    COMPONENT fathom_development)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs/"
    DESTINATION "${CMAKE_INSTALL_DOCDIR}"
    COMPONENT fathom_development
    FILES_MATCHING
    PATTERN "*.md"
    PATTERN "*.svg"
    PATTERN "networks.md" EXCLUDE
    PATTERN "python.md" EXCLUDE)
if(FATHOM_BUILD_HOST)
    install(FILES "${PROJECT_SOURCE_DIR}/docs/networks.md"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}"
        COMPONENT fathom_host)
    install(FILES "${PROJECT_SOURCE_DIR}/tarn/schema/descriptions.schema.json"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/fathom"
        COMPONENT fathom_host)
endif()

if(FATHOM_BUILD_PYTHON)
    install(FILES "${PROJECT_SOURCE_DIR}/docs/python.md"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}"
        COMPONENT fathom_python)
endif()

# With their sources: users start from a copy. Files that running or building them creates are
# excluded.
if(FATHOM_BUILD_EXAMPLES)
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/fathom"
        COMPONENT fathom_host
        PATTERN ".*" EXCLUDE
        PATTERN "*~" EXCLUDE
        PATTERN "*.png" EXCLUDE
        PATTERN "*.svg" EXCLUDE
        PATTERN "*.so" EXCLUDE
        PATTERN "build*" EXCLUDE)
endif()
