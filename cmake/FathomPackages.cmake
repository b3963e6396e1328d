# Packages: run cpack in the build folder. DEB makes seven packages, TGZ one archive of
# everything, which can be unpacked anywhere.

set(FATHOM_PACKAGE_CONTACT "fathom developers <fathom@example.org>" CACHE STRING
    "Maintainer of the packages")
mark_as_advanced(FATHOM_PACKAGE_CONTACT)

set(runtime "libfathom${FATHOM_ABI_VERSION}")
set(host_runtime "libtarn${FATHOM_ABI_VERSION}")

set(CPACK_GENERATOR DEB TGZ)
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PACKAGE_NAME fathom)
set(CPACK_PACKAGE_VENDOR fathom)
set(CPACK_PACKAGE_CONTACT "${FATHOM_PACKAGE_CONTACT}")
# CPack's default. CPack prepends any other text to the packages' own descriptions.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${CMAKE_PROJECT_NAME} built using CMake")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
# Independent of the umask.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_COMPONENTS_ALL fathom_runtime fathom_development)
if(FATHOM_BUILD_HOST)
    list(APPEND CPACK_COMPONENTS_ALL libtarn_runtime libtarn_development fathom_host)
endif()
if(FATHOM_BUILD_MPI)
    list(APPEND CPACK_COMPONENTS_ALL fathom_mpi)
endif()
if(FATHOM_BUILD_PYTHON)
    list(APPEND CPACK_COMPONENTS_ALL fathom_python)
endif()
set(CPACK_COMPONENT_FATHOM_DEVELOPMENT_DEPENDS fathom_runtime)
set(CPACK_COMPONENT_LIBTARN_RUNTIME_DEPENDS fathom_runtime)
set(CPACK_COMPONENT_LIBTARN_DEVELOPMENT_DEPENDS libtarn_runtime fathom_development)
# The program is not linked with the host's library, but needs the standard objects.
set(CPACK_COMPONENT_FATHOM_HOST_DEPENDS fathom_runtime libtarn_runtime)
set(CPACK_COMPONENT_FATHOM_MPI_DEPENDS fathom_runtime libtarn_runtime)
set(CPACK_COMPONENT_FATHOM_PYTHON_DEPENDS fathom_runtime libtarn_runtime)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The program is linked with the libraries of this build, which no package has yet.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}"
    "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/fathom")
set(CPACK_DEBIAN_PACKAGE_SOURCE fathom)

set(CPACK_DEBIAN_FATHOM_RUNTIME_PACKAGE_NAME "${runtime}")
set(CPACK_DEBIAN_FATHOM_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_FATHOM_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_BINARY_DIR}/packaging/fathom/shlibs")
set(CPACK_DEBIAN_FATHOM_RUNTIME_DESCRIPTION "data-flow visualization framework - libraries
Value types and base classes of processing objects, and the underlying libraries:
objects and their evaluation, geometry, references and arrays.")

set(CPACK_DEBIAN_FATHOM_DEVELOPMENT_PACKAGE_NAME libfathom-dev)
set(CPACK_DEBIAN_FATHOM_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_FATHOM_DEVELOPMENT_PACKAGE_SUGGESTS "cmake (>= 3.25) | pkg-config")
set(CPACK_DEBIAN_FATHOM_DEVELOPMENT_DESCRIPTION "data-flow visualization framework - headers
Headers, the CMake package and files for pkg-config, for writing libraries of
processing objects and programs that use them.")

set(CPACK_DEBIAN_LIBTARN_RUNTIME_PACKAGE_NAME "${host_runtime}")
set(CPACK_DEBIAN_LIBTARN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBTARN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_BINARY_DIR}/packaging/libtarn/shlibs")
set(CPACK_DEBIAN_LIBTARN_RUNTIME_DESCRIPTION "data-flow visualization framework - host library
Loads, evaluates and changes saved networks of processing objects, with the objects
that every network may use.")

set(CPACK_DEBIAN_LIBTARN_DEVELOPMENT_PACKAGE_NAME libtarn-dev)
set(CPACK_DEBIAN_LIBTARN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_LIBTARN_DEVELOPMENT_PACKAGE_SUGGESTS "cmake (>= 3.25) | pkg-config")
set(CPACK_DEBIAN_LIBTARN_DEVELOPMENT_DESCRIPTION "data-flow visualization framework - headers of the host library
Headers, targets for CMake and a file for pkg-config, for writing programs that
evaluate saved networks.")

set(CPACK_DEBIAN_FATHOM_MPI_PACKAGE_NAME tarn-mpi)
set(CPACK_DEBIAN_FATHOM_MPI_PACKAGE_SECTION science)
set(CPACK_DEBIAN_FATHOM_MPI_PACKAGE_SUGGESTS "tarn, openmpi-bin")
set(CPACK_DEBIAN_FATHOM_MPI_DESCRIPTION "data-flow visualization framework - program for several machines
Evaluates many cases of a saved network in the processes that mpirun starts.")

set(CPACK_DEBIAN_FATHOM_PYTHON_PACKAGE_NAME python3-fathom)
set(CPACK_DEBIAN_FATHOM_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_FATHOM_PYTHON_PACKAGE_SUGGESTS "tarn, python3-pandas")
set(CPACK_DEBIAN_FATHOM_PYTHON_PACKAGE_CONTROL_EXTRA
    "${PROJECT_BINARY_DIR}/packaging/python/postinst;${PROJECT_BINARY_DIR}/packaging/python/prerm")
set(CPACK_DEBIAN_FATHOM_PYTHON_DESCRIPTION "data-flow visualization framework - Python package
Loads, evaluates, changes and saves networks of processing objects in Python, with
arrays of numpy and pictures for notebooks.")
if(FATHOM_BUILD_PYTHON)
    # The extension module fits one version of Python.
    math(EXPR next "${Python3_VERSION_MINOR} + 1")
    set(CPACK_DEBIAN_FATHOM_PYTHON_PACKAGE_DEPENDS
        "python3 (>= 3.${Python3_VERSION_MINOR}), python3 (<< 3.${next}), python3-numpy")
endif()

set(CPACK_DEBIAN_FATHOM_HOST_PACKAGE_NAME tarn)
set(CPACK_DEBIAN_FATHOM_HOST_PACKAGE_SECTION science)
set(CPACK_DEBIAN_FATHOM_HOST_PACKAGE_SUGGESTS libfathom-dev)
set(CPACK_DEBIAN_FATHOM_HOST_DESCRIPTION "data-flow visualization framework - program
Loads saved networks of processing objects and evaluates them, with examples: a week
of earthquakes and the precipitation of a year, as tables and as pictures.")

# Declare the packages that dependents of the libraries need. CPack could write these files,
# but only for all packages, and would warn about object libraries, which have no version.
set(shlibs "")
foreach(library IN ITEMS fathom gable loam trellis)
    string(APPEND shlibs "lib${library} ${FATHOM_ABI_VERSION} ${runtime} (>= ${PROJECT_VERSION})\n")
endforeach()
file(WRITE "${PROJECT_BINARY_DIR}/packaging/fathom/shlibs" "${shlibs}")
file(WRITE "${PROJECT_BINARY_DIR}/packaging/libtarn/shlibs"
    "libtarn ${FATHOM_ABI_VERSION} ${host_runtime} (>= ${PROJECT_VERSION})\n")

# Python writes compiled files beside the modules, which belong to no package.
set(scripts "${PROJECT_BINARY_DIR}/packaging/python")
file(WRITE "${scripts}/postinst" "#!/bin/sh
set -e
if [ \"$1\" = configure ] && command -v py3compile >/dev/null; then
    py3compile -p python3-fathom
fi
")
file(WRITE "${scripts}/prerm" "#!/bin/sh
set -e
if command -v py3clean >/dev/null; then
    py3clean -p python3-fathom
fi
")
file(CHMOD "${scripts}/postinst" "${scripts}/prerm" PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

include(CPack)
