# Settings that the targets of this project share.

include_guard(GLOBAL)

include(GNUInstallDirs)
include(FathomObjectLibrary)

# Sets the properties of a library that users link against.
#
# The two compile options are part of the contract, so users of the installed
# package inherit them (with pkg-config from cmake/library.pc.in). Without
# -fno-gnu-unique GCC marks the statics of templates so that a loaded library is
# never unloaded. Several formulas define their results to the last bit, which
# contraction into fused multiply-adds would change.
function(fathom_shared_library target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_compile_options(${target} PUBLIC
        $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>
        $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-ffp-contract=off>)
    # Instantiated templates of the standard library are visible whatever the compile
    # options; the linker hides them.
    if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
        set(hidden "${PROJECT_SOURCE_DIR}/cmake/hidden-symbols.map")
        target_link_options(${target} PRIVATE "LINKER:--version-script=${hidden}")
        set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${hidden}")
    endif()
    set_target_properties(${target} PROPERTIES
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        CXX_EXTENSIONS OFF
        VERSION ${PROJECT_VERSION}
        SOVERSION ${FATHOM_ABI_VERSION}
        VERIFY_INTERFACE_HEADER_SETS ON
        INSTALL_RPATH "$ORIGIN")
endfunction()

# fathom_install_library(<target> <description> [PACKAGE <package>])
#
# Installs a library and its header set, for CMake as fathom::<target> and for
# pkg-config as <target>. They are in the components <package>_runtime and
# <package>_development, and in the export <package>Targets; the default is fathom.
function(fathom_install_library target description)
    cmake_parse_arguments(PARSE_ARGV 2 arg "" "PACKAGE" "")
    set(package fathom)
    if(arg_PACKAGE)
        set(package ${arg_PACKAGE})
    endif()
    install(TARGETS ${target} EXPORT ${package}Targets
        LIBRARY COMPONENT ${package}_runtime NAMELINK_COMPONENT ${package}_development
        RUNTIME COMPONENT ${package}_runtime
        ARCHIVE COMPONENT ${package}_development
        FILE_SET HEADERS COMPONENT ${package}_development)

    get_target_property(file ${target} OUTPUT_NAME)
    if(NOT file)
        set(file ${target})
    endif()
    get_target_property(linked ${target} LINK_LIBRARIES)
    list(FILTER linked INCLUDE REGEX "^fathom::")
    list(TRANSFORM linked REPLACE "^fathom::" "")
    list(JOIN linked " " requires)
    set(folder "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig")
    file(RELATIVE_PATH prefix_from_here "${folder}" "${CMAKE_INSTALL_PREFIX}")
    string(REGEX REPLACE "/$" "" prefix_from_here "${prefix_from_here}")
    file(RELATIVE_PATH lib_from_prefix "${CMAKE_INSTALL_PREFIX}" "${CMAKE_INSTALL_FULL_LIBDIR}")
    file(RELATIVE_PATH include_from_prefix "${CMAKE_INSTALL_PREFIX}" "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/library.pc.in" "${CMAKE_CURRENT_BINARY_DIR}/${target}.pc" @ONLY)
    install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${target}.pc"
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
        COMPONENT ${package}_development)
endfunction()

# fathom_install_program(<target> [COMPONENT <component>])
#
# Installs a program. It finds the libraries even if the prefix is moved. Without a component, it
# is installed for CMake as fathom::<target>.
function(fathom_install_program target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "COMPONENT" "")
    file(RELATIVE_PATH lib_from_bin "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${lib_from_bin}")
    if(arg_COMPONENT)
        install(TARGETS ${target} COMPONENT ${arg_COMPONENT})
    else()
        install(TARGETS ${target} EXPORT fathomHostTargets)
    endif()
endfunction()
