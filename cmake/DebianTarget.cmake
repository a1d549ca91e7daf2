# Read by CPack: dpkg-shlibdeps looks at the libraries of the machine that it runs on, unless told of another.
if(CPACK_DEBIAN_PACKAGE_ARCHITECTURE)
    set(ENV{DEB_HOST_ARCH} ${CPACK_DEBIAN_PACKAGE_ARCHITECTURE})
endif()
