# 64-bit ARM, in an emulator.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(TAVLO_TRIPLET aarch64-linux-gnu)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -s 67108864)  # unoptimised, deep values take more than the usual stack
include(${CMAKE_CURRENT_LIST_DIR}/CrossToolchain.cmake)
