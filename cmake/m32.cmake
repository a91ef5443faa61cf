# 32-bit x86, whose programs run on a 64-bit one.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(TAVLO_TRIPLET i686-linux-gnu)
include(${CMAKE_CURRENT_LIST_DIR}/CrossToolchain.cmake)
