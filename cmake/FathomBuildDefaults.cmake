# Default settings of a build.

# The build tree has the layout of an installation, so its files find each other.
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

set(CMAKE_CXX_EXTENSIONS OFF)

# Makes the targets that the calling folder adds unity builds, whatever the preset.
macro(fathom_unity_build)
    if(NOT CMAKE_UNITY_BUILD)
        set(CMAKE_UNITY_BUILD ON)
        set(CMAKE_UNITY_BUILD_BATCH_SIZE 32)
        add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
    endif()
endmacro()

# A project that embeds this one decides how to compile.
if(NOT PROJECT_IS_TOP_LEVEL)
    return()
endif()

get_property(is_multi_config GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
if(NOT CMAKE_BUILD_TYPE AND NOT is_multi_config)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build" FORCE)
endif()

find_program(FATHOM_CCACHE ccache DOC "Compiler cache, used if found")
mark_as_advanced(FATHOM_CCACHE)
if(FATHOM_CCACHE AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${FATHOM_CCACHE}")
endif()

# GCC takes the sources of a unity build for headers, in which unnamed namespaces are mistakes.
# Collecting garbage takes a tenth of its time for large units, and saves a fifth of their memory.
if(CMAKE_UNITY_BUILD)
    add_compile_options(
        $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>
        $<$<CXX_COMPILER_ID:GNU>:--param=ggc-min-heapsize=1000000>)
endif()
