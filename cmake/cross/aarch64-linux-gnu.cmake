set(triplet aarch64-linux-gnu)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)
include("${CMAKE_CURRENT_LIST_DIR}/debian.cmake")
