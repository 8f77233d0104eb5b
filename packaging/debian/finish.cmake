# Run by CPack on the installed files before they become packages: arranges each component as Debian
# wants it, with gzip and strip.
cmake_policy(VERSION 3.25)
if(NOT CPACK_GENERATOR STREQUAL "DEB")
    return()
endif()

function(compress file)
    # Without the name and the time, so that the same files give the same package.
    execute_process(COMMAND gzip -9nf ${file} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# The licence, in the form in which Debian's tools read it.
file(STRINGS ${CPACK_RESOURCE_FILE_LICENSE} lines)
list(FILTER lines INCLUDE REGEX "^Copyright ")
string(REPLACE "Copyright (c) " "" holder "${lines}")
file(READ ${CPACK_RESOURCE_FILE_LICENSE} license)
string(REGEX REPLACE "^.*(Permission is)" "\\1" license "${license}")
string(STRIP "${license}" license)
string(REPLACE "\n\n" "\n.\n" license "${license}")
string(REPLACE "\n" "\n " license "${license}")
string(CONCAT copyright
    "Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/\n"
    "Upstream-Name: Pellum\n\n"
    "Files: *\nCopyright: ${holder}\nLicense: Expat\n ${license}\n")

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
    set(usr ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr)
    set(documents ${usr}/share/doc/${package})

    if(EXISTS ${usr}/share/zsh/site-functions)
        file(RENAME ${usr}/share/zsh/site-functions ${usr}/share/zsh/vendor-completions)
    endif()
    file(GLOB_RECURSE pages ${usr}/share/man/*.[1-8])
    foreach(page IN LISTS pages)
        compress(${page})
    endforeach()
    file(GLOB programs ${usr}/bin/*)
    foreach(program IN LISTS programs)
        execute_process(COMMAND strip --remove-section=.comment --remove-section=.note ${program}
            COMMAND_ERROR_IS_FATAL ANY)
    endforeach()
    file(GLOB_RECURSE libraries ${usr}/lib/*.a)
    foreach(library IN LISTS libraries)
        execute_process(COMMAND strip --strip-debug --remove-section=.comment
            --enable-deterministic-archives ${library} COMMAND_ERROR_IS_FATAL ANY)
    endforeach()

    # Debian keeps the licence under a name of its own, once in each package.
    file(MAKE_DIRECTORY ${documents})
    file(GLOB_RECURSE licences ${usr}/LICENSE)
    if(licences)
        file(REMOVE ${licences})
    endif()
    file(WRITE ${documents}/copyright "${copyright}")
    configure_file(${CMAKE_CURRENT_LIST_DIR}/changelog.in ${documents}/changelog.Debian @ONLY)
    compress(${documents}/changelog.Debian)
    if(EXISTS ${CMAKE_CURRENT_LIST_DIR}/${package}.lintian-overrides)
        configure_file(${CMAKE_CURRENT_LIST_DIR}/${package}.lintian-overrides
            ${usr}/share/lintian/overrides/${package} COPYONLY)
    endif()
endforeach()
