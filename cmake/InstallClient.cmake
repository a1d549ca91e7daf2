# The client libraries for applications: `cmake --install BUILD --component client-dev`.
include(CMakePackageConfigHelpers)

set(CLIENT_PACKAGE_DIRECTORY ${CMAKE_INSTALL_LIBDIR}/cmake/reticle-client)

install(
    TARGETS reticle-client
    EXPORT reticle-client
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT client-dev
    PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/reticle-client COMPONENT client-dev
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(
    EXPORT reticle-client
    FILE reticle-client-targets.cmake
    NAMESPACE reticle-client::
    DESTINATION ${CLIENT_PACKAGE_DIRECTORY}
    COMPONENT client-dev)

configure_package_config_file(
    cmake/reticle-client-config.cmake.in ${PROJECT_BINARY_DIR}/reticle-client-config.cmake
    INSTALL_DESTINATION ${CLIENT_PACKAGE_DIRECTORY}
    NO_SET_AND_CHECK_MACRO)
# Below 1.0.0 a new minor version may break its users.
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/reticle-client-config-version.cmake COMPATIBILITY SameMinorVersion)

# Relative to the file itself, so that an installed tree can be moved.
set(CLIENT_PKGCONFIG_DIRECTORY ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH CLIENT_PREFIX_FROM_PKGCONFIG /${CLIENT_PKGCONFIG_DIRECTORY} /)
string(REGEX REPLACE "/$" "" CLIENT_PREFIX_FROM_PKGCONFIG ${CLIENT_PREFIX_FROM_PKGCONFIG})
configure_file(cmake/reticle-client.pc.in ${PROJECT_BINARY_DIR}/reticle-client.pc @ONLY)

install(
    FILES ${PROJECT_BINARY_DIR}/reticle-client-config.cmake
          ${PROJECT_BINARY_DIR}/reticle-client-config-version.cmake
    DESTINATION ${CLIENT_PACKAGE_DIRECTORY}
    COMPONENT client-dev)
install(
    FILES ${PROJECT_BINARY_DIR}/reticle-client.pc
    DESTINATION ${CLIENT_PKGCONFIG_DIRECTORY}
    COMPONENT client-dev)

# What the authors of clients read and start from, laid out as here: the documents refer to each other and to examples.
set(CLIENT_DOCUMENTS_DIRECTORY ${CMAKE_INSTALL_DATADIR}/doc/libreticle-client-dev)
install(
    FILES docs/client-library.md docs/client-protocol.md docs/operations.md docs/performance.md docs/rtos-protocol.md
          docs/sessions.md docs/testing.md docs/trace.md
    DESTINATION ${CLIENT_DOCUMENTS_DIRECTORY}/docs
    COMPONENT client-dev)
install(
    FILES SECURITY.md
    DESTINATION ${CLIENT_DOCUMENTS_DIRECTORY}
    COMPONENT client-dev)
install(
    FILES bench/history.md
    DESTINATION ${CLIENT_DOCUMENTS_DIRECTORY}/bench
    COMPONENT client-dev)
install(
    DIRECTORY docs/schema
    DESTINATION ${CLIENT_DOCUMENTS_DIRECTORY}/docs
    COMPONENT client-dev)
install(
    DIRECTORY examples
    DESTINATION ${CLIENT_DOCUMENTS_DIRECTORY}
    USE_SOURCE_PERMISSIONS
    COMPONENT client-dev
    PATTERN __pycache__ EXCLUDE)
install(
    DIRECTORY tests/replay/sessions
    DESTINATION ${CLIENT_DOCUMENTS_DIRECTORY}
    COMPONENT client-dev
    FILES_MATCHING PATTERN "*.session")

# The client for Python, where Debian's Python looks: `cmake --install BUILD --component python-client`.
install(
    DIRECTORY examples/python/reticle_client
    DESTINATION lib/python3/dist-packages
    COMPONENT python-client
    PATTERN __pycache__ EXCLUDE)
