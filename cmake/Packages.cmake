# Debian packages of what is installed, a package for each component: see scripts/packages.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME reticled)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
# Each package has a summary of its own, the first line of its description.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
# What only a Debian package has, from packaging/deb/.
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/DebianFiles.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/DebianMultiArch.cmake)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/cmake/DebianTarget.cmake)

set(DEBIAN_FILES ${PROJECT_SOURCE_DIR}/packaging/deb)
# Whoever delivers the packages names themselves.
set(PACKAGE_MAINTAINER "reticled maintainers <maintainers@reticled.example>" CACHE STRING
    "Name and address of who maintains the Debian packages")
configure_file(${DEBIAN_FILES}/changelog.in ${PROJECT_BINARY_DIR}/debian-changelog @ONLY)
set(CPACK_DEBIAN_CHANGELOG ${PROJECT_BINARY_DIR}/debian-changelog)
set(CPACK_DEBIAN_FILES ${DEBIAN_FILES})
set(CPACK_DEBIAN_COPYRIGHTS ${DEBIAN_FILES}/copyright)
if(JSONCPP_FROM_SOURCE)
    list(APPEND CPACK_DEBIAN_COPYRIGHTS ${DEBIAN_FILES}/copyright.jsoncpp)
endif()

# By the compiler's target, the only thing that tells the two 32-bit ARM ports apart; the machine's own elsewhere.
set(DEBIAN_ARCHITECTURE_x86_64-linux-gnu amd64)
set(DEBIAN_ARCHITECTURE_aarch64-linux-gnu arm64)
set(DEBIAN_ARCHITECTURE_arm-linux-gnueabihf armhf)
if(DEFINED DEBIAN_ARCHITECTURE_${CMAKE_LIBRARY_ARCHITECTURE})
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE ${DEBIAN_ARCHITECTURE_${CMAKE_LIBRARY_ARCHITECTURE}})
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE reticled)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${PACKAGE_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_SERVICE_PACKAGE_NAME reticled)
set(CPACK_DEBIAN_SERVICE_PACKAGE_SECTION net)
set(CPACK_DEBIAN_SERVICE_PACKAGE_SHLIBDEPS ON)
# The tools are no mere recommendation: without reticlectl every health check fails, and restarts a healthy service.
set(CPACK_DEBIAN_SERVICE_PACKAGE_DEPENDS
    "reticle-tools (= ${PROJECT_VERSION}), systemd | systemd-standalone-sysusers")
set(CPACK_DEBIAN_SERVICE_PACKAGE_CONTROL_EXTRA
    ${DEBIAN_FILES}/reticled/postinst ${DEBIAN_FILES}/reticled/prerm ${DEBIAN_FILES}/reticled/postrm)
set(CPACK_DEBIAN_SERVICE_DESCRIPTION
"reticle service of a sighting device
Clients list, activate, add, update and delete the reticles of the device
over TCP port 3451; the service passes that on to the device's real-time
side.
.
It is off until the administrator enables it, as everybody who reaches its
port may change the reticles: systemctl enable --now reticled.service")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME reticle-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION
"command line client and simulated device for reticle services
reticlectl shows and changes the reticles of a device, and tells whether its
service answers. rtos-sim plays the device's real-time side, with faults on
demand.")

set(CPACK_DEBIAN_CLIENT-DEV_PACKAGE_NAME libreticle-client-dev)
set(CPACK_DEBIAN_CLIENT-DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_CLIENT-DEV_PACKAGE_DEPENDS "libjsoncpp-dev, pkg-config")
set(CPACK_DEBIAN_CLIENT-DEV_DESCRIPTION
"C++ library for clients of reticle services, development files
Headers, the static library, a CMake package and a pkg-config file; the
protocols of the service, JSON Schemas, example clients in C++ and Python,
and recorded sessions, which rtos-sim replays.")

set(CPACK_DEBIAN_PYTHON-CLIENT_PACKAGE_NAME python3-reticle-client)
set(CPACK_DEBIAN_PYTHON-CLIENT_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON-CLIENT_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON-CLIENT_PACKAGE_DEPENDS "python3 (>= 3.9)")
set(CPACK_DEBIAN_PYTHON-CLIENT_PACKAGE_CONTROL_EXTRA
    ${DEBIAN_FILES}/python3-reticle-client/postinst ${DEBIAN_FILES}/python3-reticle-client/prerm)
set(CPACK_DEBIAN_PYTHON-CLIENT_DESCRIPTION
"Python module for clients of reticle services
A typed class that lists, activates, adds, updates and deletes the reticles
of a sighting device; it needs nothing but Python's standard library.")

set(CPACK_COMPONENTS_ALL service tools)
if(NOT JSONCPP_FROM_SOURCE)
    list(APPEND CPACK_COMPONENTS_ALL client-dev python-client)
endif()
include(CPack)
