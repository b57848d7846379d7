set(triplet arm-linux-gnueabihf)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm)
# Notes that GCC 7 passed some arguments otherwise: nothing here was compiled by an older one.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
include("${CMAKE_CURRENT_LIST_DIR}/debian.cmake")
