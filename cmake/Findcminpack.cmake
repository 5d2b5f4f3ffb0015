# cminpack::cminpack, the library and its header. Debian's own configuration
# file sets variables only.

find_path(cminpack_INCLUDE_DIR cminpack.h PATH_SUFFIXES cminpack-1)
find_library(cminpack_LIBRARY cminpack)
mark_as_advanced(cminpack_INCLUDE_DIR cminpack_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(cminpack REQUIRED_VARS cminpack_LIBRARY cminpack_INCLUDE_DIR)

if(cminpack_FOUND AND NOT TARGET cminpack::cminpack)
    add_library(cminpack::cminpack UNKNOWN IMPORTED)
    set_target_properties(cminpack::cminpack PROPERTIES
        IMPORTED_LOCATION "${cminpack_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${cminpack_INCLUDE_DIR}")
endif()
