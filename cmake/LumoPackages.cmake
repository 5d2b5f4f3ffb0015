# Debian packages: cpack, in the folder of a release build. liblumo0 holds the
# libraries, liblumo-dev what compiling against them needs, lumo the program, and
# lumo-data the schemas and stylesheets that both read.

set(LUMO_PACKAGE_MAINTAINER "lumo maintainers <maintainers@lumo.invalid>"
    CACHE STRING "Who answers for the Debian packages")

# What each package has in its folder below share/doc.
find_program(LUMO_GZIP gzip REQUIRED)
set(package_documents ${CMAKE_CURRENT_BINARY_DIR}/packaging)
set(package_version ${PROJECT_VERSION}-1)
configure_file(packaging/changelog.Debian.in ${package_documents}/changelog.Debian @ONLY)
configure_file(CHANGELOG.md ${package_documents}/changelog COPYONLY)
execute_process(
    COMMAND ${LUMO_GZIP} -9nkf changelog changelog.Debian
    WORKING_DIRECTORY ${package_documents}
    COMMAND_ERROR_IS_FATAL ANY)

# lumo_package(<component> <package> <depends> <description>)
macro(lumo_package component package depends description)
    install(
        FILES
            ${PROJECT_SOURCE_DIR}/packaging/copyright
            ${package_documents}/changelog.gz
            ${package_documents}/changelog.Debian.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
    string(TOUPPER ${component} upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
    set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}")
    set(CPACK_DEBIAN_${upper}_DESCRIPTION "${description}")
    list(APPEND CPACK_COMPONENTS_ALL ${component})
endmacro()

set(library_package liblumo${PROJECT_VERSION_MAJOR})
set(about "The library finds the camera model and the multi-camera rig that took
images, converts project files, and aligns sets of points.")
lumo_package(data lumo-data "" "schemas and stylesheets of the photogrammetry core library
${about}
.
This package holds the files with which it validates and converts documents.")
lumo_package(libraries ${library_package} "lumo-data (= ${package_version})"
    "photogrammetry core library
${about}
.
This package holds the shared libraries.")
lumo_package(program lumo
    "lumo-data (= ${package_version}), ${library_package} (= ${package_version})"
    "cameras, rigs, projects and alignment of photogrammetric images
A program for the command line that names the camera of images and the rig
that took them, keeps a database of cameras, converts project files, and
aligns sets of points of which some are wrong.")
lumo_package(development liblumo-dev
    "${library_package} (= ${package_version}), qtbase5-dev (>= 5.15), libeigen3-dev (>= 3.4), libboost-dev (>= 1.74)"
    "photogrammetry core library (development files)
${about}
.
This package holds the headers, files for CMake and pkg-config, and examples.")
install(DIRECTORY examples
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/liblumo-dev COMPONENT development)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lumo)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR lumo)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_GROUPING IGNORE) # a package each
set(CPACK_DEB_COMPONENT_INSTALL ON)
# Then the first line of a package's own description is its summary.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "lumo built using CMake")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${LUMO_PACKAGE_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_DATA_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DATA_PACKAGE_SECTION science)
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION science)
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/triggers)
include(CPack)
