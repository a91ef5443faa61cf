# What the tools for other processors have in common: Debian's g++ for TAVLO_TRIPLET, programs linked statically, so
# that they run without that processor's system, and nothing of this machine's own libraries found. GoogleTest, which
# Debian has in source too, is built along (tests/CMakeLists.txt).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${TAVLO_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${TAVLO_TRIPLET}-g++)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_FIND_ROOT_PATH /usr/${TAVLO_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${CMAKE_CURRENT_LIST_DIR})  # when the build configures itself anew, too
