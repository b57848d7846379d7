set(triplet arm-linux-gnueabihf)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm)
include("${CMAKE_CURRENT_LIST_DIR}/debian.cmake")
