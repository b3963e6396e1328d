# The target api-docs builds the reference of the libraries' headers in api/html of the
# build folder. Warnings are errors.

find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
    return()
endif()

set(headers "")
set(libraries loam gable trellis fathom)
if(FATHOM_BUILD_HOST)
    list(APPEND libraries libtarn)
endif()
foreach(library IN LISTS libraries)
    get_target_property(files ${library} HEADER_SET)
    get_target_property(folder ${library} SOURCE_DIR)
    foreach(file IN LISTS files)
        cmake_path(ABSOLUTE_PATH file BASE_DIRECTORY "${folder}")
        list(APPEND headers "${file}")
    endforeach()
endforeach()
list(TRANSFORM headers REPLACE "(.+)" "\"\\1\"" OUTPUT_VARIABLE quoted)
list(JOIN quoted " \\\n    " input)
set(api_dir "${PROJECT_BINARY_DIR}/api")
configure_file("${PROJECT_SOURCE_DIR}/docs/Doxyfile.in" "${api_dir}/Doxyfile" @ONLY)

add_custom_target(api-docs
    COMMAND Doxygen::doxygen "${api_dir}/Doxyfile"
    WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}"
    COMMENT "Building the API reference"
    VERBATIM)
