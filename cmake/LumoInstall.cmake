# Where things go on installation, and what lets others find them. All places are
# relative, so that one build serves any prefix: run paths start from $ORIGIN.

if(CMAKE_LIBRARY_ARCHITECTURE AND NOT DEFINED CMAKE_INSTALL_LIBDIR)
    set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Where libraries go")
endif()
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# The program with its resources beside it.
set(LUMO_INSTALL_APPLICATION_DIR lib/lumo)
set(LUMO_INSTALL_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/lumo)
set(LUMO_INSTALL_PKGCONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# lumo_install_library(<name> <public target>...): the library, its headers and lumo-<name>.pc
function(lumo_install_library name)
    set(target lumo_${name})
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
    install(TARGETS ${target} EXPORT lumoTargets
        LIBRARY COMPONENT libraries NAMELINK_COMPONENT development
        FILE_SET HEADERS COMPONENT development)

    set(requires)
    foreach(dependency IN LISTS ARGN)
        if(dependency STREQUAL "Eigen3::Eigen")
            list(APPEND requires eigen3)
        elseif(NOT dependency STREQUAL "Boost::headers") # found without, in /usr/include
            string(REPLACE "::" "" dependency "${dependency}")
            string(REGEX REPLACE "^lumo" "lumo-" dependency "${dependency}")
            list(APPEND requires ${dependency})
        endif()
    endforeach()
    list(JOIN requires ", " requires)
    file(RELATIVE_PATH to_prefix /${LUMO_INSTALL_PKGCONFIG_DIR} /)
    string(REGEX REPLACE "/$" "" to_prefix "${to_prefix}")
    configure_file(${PROJECT_SOURCE_DIR}/cmake/lumo.pc.in
        ${CMAKE_CURRENT_BINARY_DIR}/lumo-${name}.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/lumo-${name}.pc
        DESTINATION ${LUMO_INSTALL_PKGCONFIG_DIR} COMPONENT development)
    set_property(GLOBAL APPEND PROPERTY LUMO_COMPONENTS ${name})
endfunction()

# lumo_install_program(<target>): the program beside its resources, with a link in bin/
function(lumo_install_program target)
    file(RELATIVE_PATH to_libraries
        /${LUMO_INSTALL_APPLICATION_DIR} /${CMAKE_INSTALL_LIBDIR})
    file(RELATIVE_PATH to_program /${CMAKE_INSTALL_BINDIR} /${LUMO_INSTALL_APPLICATION_DIR}/lumo)
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${to_libraries}")
    install(TARGETS ${target}
        RUNTIME DESTINATION ${LUMO_INSTALL_APPLICATION_DIR} COMPONENT program)
    file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/install)
    file(CREATE_LINK ${to_program} ${CMAKE_CURRENT_BINARY_DIR}/install/lumo SYMBOLIC)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/install/lumo
        DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT program)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/resources
        DESTINATION ${LUMO_INSTALL_APPLICATION_DIR} COMPONENT data)
endfunction()

# lumo_install_package(): what find_package(lumo) reads; after all libraries
function(lumo_install_package)
    get_property(components GLOBAL PROPERTY LUMO_COMPONENTS)
    configure_package_config_file(
        ${PROJECT_SOURCE_DIR}/cmake/lumoConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/lumoConfig.cmake
        INSTALL_DESTINATION ${LUMO_INSTALL_CMAKE_DIR}
        PATH_VARS LUMO_INSTALL_APPLICATION_DIR
        NO_SET_AND_CHECK_MACRO)
    write_basic_package_version_file(
        ${CMAKE_CURRENT_BINARY_DIR}/lumoConfigVersion.cmake COMPATIBILITY SameMajorVersion)
    install(
        FILES
            ${CMAKE_CURRENT_BINARY_DIR}/lumoConfig.cmake
            ${CMAKE_CURRENT_BINARY_DIR}/lumoConfigVersion.cmake
        DESTINATION ${LUMO_INSTALL_CMAKE_DIR} COMPONENT development)
    install(EXPORT lumoTargets
        NAMESPACE lumo:: DESTINATION ${LUMO_INSTALL_CMAKE_DIR} COMPONENT development)
endfunction()
