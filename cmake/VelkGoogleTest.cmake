# GoogleTest as Debian's packages have it: built, for the machine itself; as source, for every other.
if(CMAKE_CROSSCOMPILING OR VELK_BUILD_GTEST)
    set(CMAKE_POLICY_DEFAULT_CMP0077 NEW)
    set(INSTALL_GTEST OFF)
    add_subdirectory(/usr/src/googletest "${PROJECT_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
else()
    find_package(GTest REQUIRED)
endif()
