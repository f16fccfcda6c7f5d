# Checks on the DLLs as they ship; they need no test framework.

add_test(NAME exports
    COMMAND "${PROJECT_SOURCE_DIR}/tests/windows/exports" ${CMAKE_OBJDUMP} "${PROJECT_SOURCE_DIR}/include"
        $<TARGET_FILE:velk32> $<TARGET_FILE:velkimage> $<TARGET_FILE:velkfaulty>)

# Which machine runs the rest: it is Wine on any other than Windows.
if(NOT CMAKE_SIZEOF_VOID_P EQUAL 8)
    return()
endif()
if(VELK_BUILD_EXAMPLES)
    foreach(client windows_client windows_loader)
        add_test(NAME ${client} COMMAND ${client} "Z:${PROJECT_SOURCE_DIR}/examples/vxi")
    endforeach()
endif()
if(VELK_BUILD_TESTS)
    add_test(NAME left_out
        COMMAND "${PROJECT_SOURCE_DIR}/tests/windows/left_out" "${PROJECT_SOURCE_DIR}/tests"
            ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:velk_inner_tests> $<TARGET_FILE:velk_client_tests>)
endif()
