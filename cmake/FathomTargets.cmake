# What the targets of this project have in common.

include_guard(GLOBAL)

include(GNUInstallDirs)
include(FathomObjectLibrary)

# Properties of a library that other people link against.
#
# The two compile options are part of the contract, so users of the installed
# package inherit them: without -fno-gnu-unique GCC marks the statics of
# templates in a way that keeps a loaded library in memory for ever, and several
# formulas fix their grouping to the last bit, which a contraction into fused
# multiply-adds would change.
function(fathom_shared_library target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_compile_options(${target} PUBLIC
        $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>
        $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-ffp-contract=off>)
    set_target_properties(${target} PROPERTIES
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        CXX_EXTENSIONS OFF
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
        VERIFY_INTERFACE_HEADER_SETS ON
        INSTALL_RPATH "$ORIGIN")
endfunction()

# Installs a library and its header set and makes it known to the package as
# fathom::<target>.
function(fathom_install_library target)
    install(TARGETS ${target} EXPORT fathomTargets FILE_SET HEADERS)
endfunction()

# Installs a program so that it finds the libraries wherever the prefix is moved,
# and makes it known to the package as fathom::<target>.
function(fathom_install_program target)
    file(RELATIVE_PATH lib_from_bin "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${lib_from_bin}")
    install(TARGETS ${target} EXPORT fathomTargets)
endfunction()
