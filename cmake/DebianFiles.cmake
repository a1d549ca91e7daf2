# Run by CPack on the installed files: adds what Debian's policy asks of a package and nobody else wants.
# CPack leaves it set to the last component's directory.
unset(ENV{DESTDIR})
set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS ${CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})

# Without name and time: the same package, byte for byte, from the same files.
function(compress)
    if(ARGN)
        execute_process(COMMAND gzip -9n ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
    endif()
endfunction()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} variable)
    set(package ${CPACK_DEBIAN_${variable}_PACKAGE_NAME})
    set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX}/share)
    set(documents ${share}/doc/${package})

    file(GLOB man_pages ${share}/man/*/*)
    compress(${man_pages})
    file(INSTALL ${CPACK_DEBIAN_CHANGELOG} DESTINATION ${documents} RENAME changelog)
    compress(${documents}/changelog)
    execute_process(
        COMMAND cat ${CPACK_DEBIAN_COPYRIGHTS}
        OUTPUT_FILE ${documents}/copyright
        COMMAND_ERROR_IS_FATAL ANY)
    set(overrides ${CPACK_DEBIAN_FILES}/${package}.lintian-overrides)
    if(EXISTS ${overrides})
        file(INSTALL ${overrides} DESTINATION ${share}/lintian/overrides RENAME ${package})
    endif()
endforeach()
