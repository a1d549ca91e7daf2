# 32-bit ARM with floating-point registers, as Debian's architecture armhf.
set(CROSS_PROCESSOR armv7l)
set(CROSS_TRIPLET arm-linux-gnueabihf)
set(CROSS_EMULATOR qemu-arm)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
