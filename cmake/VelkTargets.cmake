# How the project's targets are built.

find_package(Threads REQUIRED)

# What holds for every target: language level, warnings, sanitizers, coverage, hardening.
add_library(velk_build INTERFACE)
target_compile_features(velk_build INTERFACE c_std_99 cxx_std_20)
target_compile_options(velk_build INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wformat=2)
if(VELK_SANITIZERS)
    target_compile_options(velk_build INTERFACE
        -fsanitize=${VELK_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(velk_build INTERFACE -fsanitize=${VELK_SANITIZERS})
endif()
# Counters are mapped from their file, so that a process which dies without notice has counted too.
if(VELK_COVERAGE)
    # Atomic: some counts are differences of others, and what threads lose of these would come out as never.
    target_compile_options(velk_build INTERFACE
        -fprofile-instr-generate -fcoverage-mapping -fprofile-update=atomic
        "SHELL:-mllvm -runtime-counter-relocation")
    target_link_options(velk_build INTERFACE -fprofile-instr-generate)
endif()
# Nothing of the compiler's stands beside the DLLs.
if(WIN32)
    target_link_options(velk_build INTERFACE -static)
endif()
if(VELK_HARDENING)
    target_compile_definitions(velk_build INTERFACE
        $<$<COMPILE_LANGUAGE:CXX>:_GLIBCXX_ASSERTIONS> _FORTIFY_SOURCE=2)
    target_compile_options(velk_build INTERFACE -fstack-protector-strong)
    target_link_options(velk_build INTERFACE -Wl,-z,relro,-z,now)
endif()

# What holds for the library and the accessors beyond that. An object that the loader has to keep
# for the life of the process (a unique symbol) would keep an accessor from being unloaded.
add_library(velk_inside INTERFACE)
target_compile_options(velk_inside INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions>
    $<$<COMPILE_LANGUAGE:CXX>:-fno-rtti>
    $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
# Offsets in files are 64 bits wide on 32-bit systems too.
target_compile_definitions(velk_inside INTERFACE _FILE_OFFSET_BITS=64)
target_include_directories(velk_inside INTERFACE
    "${PROJECT_SOURCE_DIR}" "${PROJECT_SOURCE_DIR}/include")
target_link_libraries(velk_inside INTERFACE velk_build)

function(velk_hide_symbols target)
    set_target_properties(${target} PROPERTIES
        C_VISIBILITY_PRESET hidden
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
endfunction()

# velk_add_objects(<target> <source>...): objects for the library or an accessor.
function(velk_add_objects target)
    add_library(${target} OBJECT ${ARGN})
    target_link_libraries(${target} PRIVATE velk_inside)
    velk_hide_symbols(${target})
endfunction()

# velk_add_library(<target> <directory>): a libvelk32.so.1 or Velk32.dll in <directory>, linked from the objects
# of the library. Calls inside it do not go through its exports.
function(velk_add_library target directory)
    add_library(${target} SHARED ${velkLibraryObjects})
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_link_libraries(${target} PRIVATE velk_build ${CMAKE_DL_LIBS})
    set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX)
    if(WIN32)
        velk_make_dll(${target} "${directory}")
    else()
        velk_make_shared_object(${target} "${directory}")
    endif()
endfunction()

function(velk_make_shared_object target directory)
    set(map "${PROJECT_SOURCE_DIR}/platform/libvelk32.map")
    target_link_options(${target} PRIVATE
        -Wl,-Bsymbolic-functions -Wl,--as-needed "-Wl,--version-script=${map}")
    set_target_properties(${target} PROPERTIES
        OUTPUT_NAME velk32
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}
        LIBRARY_OUTPUT_DIRECTORY "${directory}"
        LINK_DEPENDS "${map}"
        BUILD_WITH_INSTALL_RPATH ON
        INSTALL_RPATH "$ORIGIN/velk")
endfunction()

function(velk_make_dll target directory)
    target_sources(${target} PRIVATE "${PROJECT_SOURCE_DIR}/platform/velk32.def")
    set_target_properties(${target} PROPERTIES
        PREFIX ""
        OUTPUT_NAME Velk32
        RUNTIME_OUTPUT_DIRECTORY "${directory}"
        ARCHIVE_OUTPUT_DIRECTORY "${directory}")
endfunction()

# velk_add_accessor(<target> <library> <directory> <name> <source or objects>...): the accessor module
# <name>.so in <directory>/velk, beside a <library> that stands in <directory>. On Windows it is <name>.DLL
# and stands beside the library and the program, where the system looks.
function(velk_add_accessor target library directory name)
    add_library(${target} MODULE ${ARGN})
    target_link_libraries(${target} PRIVATE velk_inside ${library})
    velk_hide_symbols(${target})
    set_target_properties(${target} PROPERTIES
        PREFIX ""
        OUTPUT_NAME ${name}
        LINKER_LANGUAGE CXX)
    if(WIN32)
        set_target_properties(${target} PROPERTIES
            SUFFIX ".DLL"
            LIBRARY_OUTPUT_DIRECTORY "${directory}")
        return()
    endif()
    set(map "${PROJECT_SOURCE_DIR}/platform/accessor.map")
    target_link_options(${target} PRIVATE -Wl,--as-needed "-Wl,--version-script=${map}")
    set_target_properties(${target} PROPERTIES
        LINK_DEPENDS "${map}"
        LIBRARY_OUTPUT_DIRECTORY "${directory}/velk"
        BUILD_WITH_INSTALL_RPATH ON
        INSTALL_RPATH "$ORIGIN/..")
endfunction()
