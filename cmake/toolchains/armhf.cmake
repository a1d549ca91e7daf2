# 32-bit ARM with floating-point registers, as Debian's architecture armhf.
set(CROSS_PROCESSOR armv7l)
set(CROSS_TRIPLET arm-linux-gnueabihf)
set(CROSS_EMULATOR qemu-arm)
# The compiler notes otherwise for every vector that it once passed in another way.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
