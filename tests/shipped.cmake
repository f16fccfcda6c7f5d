# Checks on the library as it ships; they need no test framework.

# Not with coverage, whose counters come with names and allocations of their own.
if(NOT VELK_COVERAGE)
    add_test(NAME exports
        COMMAND "${PROJECT_SOURCE_DIR}/tests/exports/check"
            "${PROJECT_SOURCE_DIR}/include" $<TARGET_FILE:velk32> "${VELK_SANITIZERS}"
            $<TARGET_FILE:velkimage> $<TARGET_FILE:velkfaulty>)
endif()

# What was promised to programs is still there, as debug information shows it. The sizes of records are
# asserted everywhere.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64"
        AND NOT VELK_BUILD_GTEST
        AND CMAKE_BUILD_TYPE STREQUAL "RelWithDebInfo" AND NOT VELK_SANITIZERS)
    add_test(NAME abi
        COMMAND "${PROJECT_SOURCE_DIR}/tests/abi/check" "${PROJECT_SOURCE_DIR}" "${PROJECT_BINARY_DIR}")
    set_tests_properties(abi PROPERTIES
        ENVIRONMENT "CC=${CMAKE_C_COMPILER};CXX=${CMAKE_CXX_COMPILER}")
endif()

# A release is hardened. The same check refuses a build that is not.
if(NOT VELK_SANITIZERS AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_test(NAME hardening
        COMMAND "${PROJECT_SOURCE_DIR}/tests/hardening/check" "${PROJECT_BINARY_DIR}/compile_commands.json"
            $<TARGET_FILE:velk32> $<TARGET_FILE:velkimage> $<TARGET_FILE:velkfaulty>)
    if(NOT VELK_HARDENING)
        set_tests_properties(hardening PROPERTIES
            PASS_REGULAR_EXPRESSION "sources are compiled without -D_FORTIFY_SOURCE=2")
    endif()
endif()

# The sample image is what the table of its bytes says.
add_test(NAME mainframe
    COMMAND "${PROJECT_SOURCE_DIR}/tests/mainframe/check" "${PROJECT_SOURCE_DIR}")

if(VELK_BUILD_EXAMPLES)
    add_test(NAME tour
        COMMAND "${PROJECT_SOURCE_DIR}/scripts/run-tour" $<TARGET_FILE:tour>
            "${PROJECT_SOURCE_DIR}/examples/vxi")
    # Its catalogue names the accessor by a path from where the client is started.
    add_test(NAME template
        COMMAND template_client "${PROJECT_SOURCE_DIR}/examples/template"
        WORKING_DIRECTORY $<TARGET_FILE_DIR:template_client>)
    # A sanitizer's own dlopen does not see the library's run path.
    if(VELK_SANITIZERS)
        set_tests_properties(tour PROPERTIES
            ENVIRONMENT "LD_LIBRARY_PATH=$<TARGET_FILE_DIR:velkimage>")
    endif()
endif()

# Not with sanitizers: a client built without them cannot load a library built with them. Nor, here and below,
# what is for another machine: this one's programs cannot load it.
if(NOT VELK_SANITIZERS AND NOT VELK_BUILD_GTEST)
    add_test(NAME packages
        COMMAND "${PROJECT_SOURCE_DIR}/tests/packages/check"
            "${CMAKE_COMMAND}" "${PROJECT_BINARY_DIR}" "${CMAKE_C_COMPILER}")
endif()

# The documents show what the files in them, the library and the commands really say and do. The library is
# loaded into the interpreter, which a sanitizer would not have.
if(VELK_BUILD_EXAMPLES AND NOT VELK_SANITIZERS AND NOT VELK_BUILD_GTEST)
    add_test(NAME docs
        COMMAND "${PROJECT_SOURCE_DIR}/tests/docs/check" "${PROJECT_SOURCE_DIR}" "${PROJECT_BINARY_DIR}")
endif()

# docs/reference.md is what the headers say.
add_test(NAME reference COMMAND "${PROJECT_SOURCE_DIR}/scripts/make-reference" --check)
