# Functions for building libraries of processing objects. Part of the installed package:
# find_package(fathom) defines them.

include_guard(GLOBAL)

# Makes <target> a library that the host loads at run time by its plain name:
# "quakes" loads the file quakes.so. It may link with other object libraries, which are
# beside it. The target must link with fathom. A note in the file has the version of the binary
# interface; the host does not load a library without it.
function(fathom_object_library target)
    target_compile_features(${target} PRIVATE cxx_std_20)
    target_sources(${target} PRIVATE "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/ObjectLibraryStamp.cpp")
    set_target_properties(${target} PROPERTIES
        PREFIX ""
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        CXX_EXTENSIONS OFF
        LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib/fathom"
        INSTALL_RPATH "$ORIGIN;$ORIGIN/..")
    # Instantiated templates of the standard library are visible whatever the compile options.
    # Libraries that stay in memory could use them, and this one would never be unloaded.
    if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
        set(hidden "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/hidden-symbols.map")
        target_link_options(${target} PRIVATE "LINKER:--version-script=${hidden}")
        set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${hidden}")
    endif()
endfunction()

# Installs <target> where a host under the same prefix searches for object
# libraries.
function(fathom_install_object_library target)
    install(TARGETS ${target} LIBRARY DESTINATION lib/fathom)
endfunction()
