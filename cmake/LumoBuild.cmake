# What every target of ours is compiled with: the language, warnings,
# sanitizers and the compiler cache. Third-party code is not touched.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(BUILD_SHARED_LIBS ON)

set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

find_program(LUMO_CCACHE ccache)
if(LUMO_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # One cache for all checkouts and build folders of a preset: paths count from the
    # source folder, and where a build was made does not count.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1
        ${LUMO_CCACHE})
endif()

add_library(lumo_warnings INTERFACE)
target_compile_options(lumo_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
    -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual -Wcast-align
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized> # false alarms in Eigen's inlined code
    $<$<BOOL:${LUMO_WARNINGS_AS_ERRORS}>:-Werror>)
target_compile_definitions(lumo_warnings INTERFACE
    QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_KEYWORDS)

add_library(lumo_sanitizers INTERFACE)
if(LUMO_SANITIZE)
    target_compile_options(lumo_sanitizers INTERFACE
        -fsanitize=${LUMO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(lumo_sanitizers INTERFACE -fsanitize=${LUMO_SANITIZE})
endif()
