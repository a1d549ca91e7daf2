# Run by CPack on the packages: writes the field that CPack 3.25 does not know. Of the client library, packages of several
# architectures install side by side: what depends on the architecture lies in its own directory.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
    if(NOT package MATCHES "/libreticle-client-dev_")
        continue()
    endif()
    set(content ${CPACK_TEMPORARY_DIRECTORY}/multi-arch)
    file(REMOVE_RECURSE ${content})
    execute_process(COMMAND dpkg-deb --raw-extract ${package} ${content} COMMAND_ERROR_IS_FATAL ANY)
    file(READ ${content}/DEBIAN/control control)
    string(REPLACE "\nPackage: " "\nMulti-Arch: same\nPackage: " control "${control}")
    file(WRITE ${content}/DEBIAN/control "${control}")
    execute_process(
        COMMAND dpkg-deb --root-owner-group -Z${CPACK_DEBIAN_COMPRESSION_TYPE} --build ${content} ${package}
        OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()
