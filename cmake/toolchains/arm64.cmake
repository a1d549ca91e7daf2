# 64-bit ARM, as Debian's architecture arm64.
set(CROSS_PROCESSOR aarch64)
set(CROSS_TRIPLET aarch64-linux-gnu)
set(CROSS_EMULATOR qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
