# A 64-bit processor whose bytes run from the highest to the lowest, in an emulator.
set(CMAKE_SYSTEM_PROCESSOR s390x)
set(TAVLO_TRIPLET s390x-linux-gnu)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-s390x -s 67108864)  # unoptimised, deep values take more than the usual stack
include(${CMAKE_CURRENT_LIST_DIR}/CrossToolchain.cmake)
