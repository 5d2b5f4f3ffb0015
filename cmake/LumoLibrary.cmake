# lumo_add_library, lumo_add_tests: the one shape of a library of the house
# (public headers in include/lumo/<name>/, the rest in src/, tests in tests/).

include(GenerateExportHeader)

# LUMO_TEST_EXPORT marks what tests and fuzz targets call beside the public interface:
# exported from a build that has them, from no other.
set(LUMO_TEST_ACCESS OFF)
if(LUMO_BUILD_TESTS OR LUMO_BUILD_FUZZERS)
    set(LUMO_TEST_ACCESS ON)
endif()

# lumo_add_library(<name>
#     HEADERS <file>...    public headers below include/lumo/<name>/
#     SOURCES <file>...    below src/
#     PUBLIC <target>...   named in our public headers
#     PRIVATE <target>...
#     [C_INTERFACE])       programs in C use it, too
function(lumo_add_library name)
    cmake_parse_arguments(ARG "C_INTERFACE" "" "HEADERS;SOURCES;PUBLIC;PRIVATE" ${ARGN})
    set(target lumo_${name})
    list(TRANSFORM ARG_HEADERS PREPEND include/lumo/${name}/)
    list(TRANSFORM ARG_SOURCES PREPEND src/)

    add_library(${target} SHARED ${ARG_SOURCES})
    add_library(lumo::${name} ALIAS ${target})
    string(TOUPPER ${name} upper)
    set(export_header ${CMAKE_CURRENT_BINARY_DIR}/include/lumo/${name}/export.h)
    generate_export_header(${target} BASE_NAME LUMO_${upper} EXPORT_FILE_NAME ${export_header})
    target_sources(${target} PUBLIC FILE_SET HEADERS
        BASE_DIRS include ${CMAKE_CURRENT_BINARY_DIR}/include
        FILES ${ARG_HEADERS} ${export_header})
    target_include_directories(${target} PRIVATE src)
    target_compile_definitions(${target}
        PRIVATE LUMO_TEST_EXPORT=$<$<BOOL:${LUMO_TEST_ACCESS}>:LUMO_${upper}_EXPORT>)
    target_link_libraries(${target}
        PUBLIC ${ARG_PUBLIC}
        PRIVATE ${ARG_PRIVATE}
            $<BUILD_INTERFACE:lumo_warnings> $<BUILD_INTERFACE:lumo_sanitizers>)
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${name}
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        VERIFY_INTERFACE_HEADER_SETS ON)
    if(NOT ARG_C_INTERFACE)
        target_compile_features(${target} PUBLIC cxx_std_20)
    endif()
    if(UNIX AND NOT APPLE)
        set(exports ${PROJECT_SOURCE_DIR}/cmake/exports.map)
        target_link_options(${target} PRIVATE "LINKER:--version-script=${exports}")
        set_target_properties(${target} PROPERTIES LINK_DEPENDS ${exports})
    endif()
    lumo_install_library(${name} ${ARG_PUBLIC})
endfunction()

# lumo_add_tests(<name>
#     UNITS <unit>...      tests/<unit>_test.cpp each
#     LINK <target>...     beside lumo::<name>
#     ENVIRONMENT <variable=value>...)
# One program a library, one ctest entry a test. Tests see src/ too.
function(lumo_add_tests name)
    if(NOT LUMO_BUILD_TESTS)
        return()
    endif()
    cmake_parse_arguments(ARG "" "" "UNITS;LINK;ENVIRONMENT" ${ARGN})
    list(TRANSFORM ARG_UNITS PREPEND tests/)
    list(TRANSFORM ARG_UNITS APPEND _test.cpp)
    add_executable(${name}_tests ${ARG_UNITS})
    target_include_directories(${name}_tests PRIVATE src tests)
    target_compile_definitions(${name}_tests PRIVATE LUMO_TEST_EXPORT=)
    if(LUMO_SANITIZE)
        # Halves the time to compile them; what is checked is the libraries.
        target_compile_options(${name}_tests PRIVATE -O0)
    endif()
    target_link_libraries(${name}_tests
        PRIVATE ${ARG_LINK} lumo_test_support lumo_warnings lumo_sanitizers)
    if(TARGET lumo_${name})
        target_link_libraries(${name}_tests PRIVATE lumo::${name})
    endif()
    gtest_discover_tests(${name}_tests
        TEST_PREFIX ${name}.
        NO_PRETTY_VALUES
        PROPERTIES TIMEOUT 120 ENVIRONMENT "${ARG_ENVIRONMENT}"
        DISCOVERY_TIMEOUT 60)
endfunction()
