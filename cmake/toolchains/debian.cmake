# Debian's cross compiler CROSS_TRIPLET-g++, and libraries of the foreign architecture beside the host's own:
# scripts/bootstrap arm64 or armhf installs both. There is no root of another system to search, so header-only
# packages and programs that the build runs are found where the host has them.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${CROSS_PROCESSOR})
set(CMAKE_CXX_COMPILER ${CROSS_TRIPLET}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${CROSS_TRIPLET})
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/${CROSS_TRIPLET}/pkgconfig:/usr/share/pkgconfig)

# Runs what was built. It finds the interpreter and the libraries by the names they have on a device.
find_program(CMAKE_CROSSCOMPILING_EMULATOR ${CROSS_EMULATOR})
