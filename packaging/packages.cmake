# What CPack needs to know. "cpack" in a build folder makes a Debian package of each component where
# dpkg is there: "pellum", and "libpellum-dev" when the build has something to build against. "cpack
# -G TGZ", the rule elsewhere, makes an archive of the program; for Windows it is one of the kind ZIP.
set(PELLUM_MAINTAINER "The Pellum authors <authors@pellum.example>" CACHE STRING
    "Who answers for the packages: a name and an address")
find_program(PELLUM_DPKG dpkg)
mark_as_advanced(PELLUM_MAINTAINER PELLUM_DPKG)

set(CPACK_PACKAGE_NAME pellum)
set(CPACK_PACKAGE_CONTACT ${PELLUM_MAINTAINER})
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
if(WIN32)
    set(CPACK_GENERATOR ZIP)
elseif(PELLUM_DPKG)
    set(CPACK_GENERATOR DEB)
else()
    set(CPACK_GENERATOR TGZ)
endif()
# Those that something has been installed in so far.
get_cmake_property(CPACK_COMPONENTS_ALL COMPONENTS)
list(REMOVE_ITEM CPACK_COMPONENTS_ALL Unspecified)

set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
string(TOLOWER ${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR} system)
if(PELLUM_STATIC)
    string(APPEND system -static)
endif()
set(CPACK_ARCHIVE_PROGRAM_FILE_NAME pellum-${PROJECT_VERSION}-${system})
set(CPACK_ARCHIVE_DEVELOPMENT_FILE_NAME libpellum-${PROJECT_VERSION}-${system})

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
# The changelog begins with "pellum (VERSION-RELEASE)"; a release mends the package alone.
file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/debian/changelog.in newest LIMIT_COUNT 1)
if(NOT newest MATCHES "^pellum \\(${PROJECT_VERSION}-([0-9]+)\\)")
    message(FATAL_ERROR "packaging/debian/changelog.in is not about version ${PROJECT_VERSION}")
endif()
set(CPACK_DEBIAN_PACKAGE_RELEASE ${CMAKE_MATCH_1})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian/finish.cmake)

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME pellum)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION interpreters)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
if(PELLUM_HAS_LIBEDIT)
    # Loaded at run time where it is there, so that no list of needed libraries shows it.
    set(CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS libedit2)
endif()
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION "small scripting language
Pellum is a small, dynamically typed scripting language with numbers,
strings, lists, maps, closures and errors that can be caught. Programs run
on a bytecode virtual machine or on a tree-walking interpreter, with the
same results.
.
This package has the program, its manual, and documents with examples.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libpellum-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS pellum)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "small scripting language - to build into programs
Pellum is a small, dynamically typed scripting language.
.
This package has the headers and the static library with which a program in
C++ runs Pellum, and what CMake and pkg-config need to find them.")
include(CPack)
