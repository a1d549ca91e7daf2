# The programs and what belongs to them: `cmake --install BUILD --component service`, and the same for `tools`.
set(SYSTEMD_DIRECTORY lib)
set(MAN_DIRECTORY ${PROJECT_BINARY_DIR}/man)

# What `cmake --install` needs, without tests and benchmarks.
add_custom_target(installed-programs DEPENDS reticled reticled-foreground reticlectl rtos-sim reticle-client man)

install(TARGETS reticled reticled-foreground RUNTIME DESTINATION ${CMAKE_INSTALL_SBINDIR} COMPONENT service)
install(
    DIRECTORY packaging/systemd/
    DESTINATION ${SYSTEMD_DIRECTORY}/systemd/system
    COMPONENT service)
install(
    FILES packaging/systemd-preset/90-reticled.preset
    DESTINATION ${SYSTEMD_DIRECTORY}/systemd/system-preset
    COMPONENT service)
# Where the unit looks for it, whatever the architecture.
install(
    PROGRAMS packaging/health-check
    DESTINATION lib/reticled
    COMPONENT service)
install(
    FILES packaging/sysusers.d/reticled.conf
    DESTINATION ${SYSTEMD_DIRECTORY}/sysusers.d
    COMPONENT service)
install(
    FILES packaging/tmpfiles.d/reticled.conf
    DESTINATION ${SYSTEMD_DIRECTORY}/tmpfiles.d
    COMPONENT service)
install(
    FILES ${MAN_DIRECTORY}/reticled.8 ${MAN_DIRECTORY}/reticled-foreground.8
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man8
    COMPONENT service)
install(
    DIRECTORY packaging/examples
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/reticled
    COMPONENT service)

install(TARGETS reticlectl rtos-sim RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
install(
    DIRECTORY simulator/reticles
    DESTINATION ${CMAKE_INSTALL_DATADIR}/reticle-tools
    COMPONENT tools)
install(
    FILES ${MAN_DIRECTORY}/reticlectl.1 ${MAN_DIRECTORY}/rtos-sim.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
    COMPONENT tools)

# Where Debian's shells look by themselves; each wants a name of its own.
foreach(completions tools/reticlectl/completions/reticlectl simulator/completions/rtos-sim)
    cmake_path(GET completions FILENAME program)
    cmake_path(GET completions PARENT_PATH directory)
    install(
        FILES ${directory}/${program}.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        RENAME ${program}
        COMPONENT tools)
    install(
        FILES ${directory}/${program}.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
        COMPONENT tools)
    install(
        FILES ${directory}/_${program}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions
        COMPONENT tools)
endforeach()
