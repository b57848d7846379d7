# Debian's cross compiler for the processor of `triplet`, with the libraries of that architecture beside our own. What
# includes this names the emulator that runs what is built; scripts/cross installs all of it.
string(REGEX MATCH "^[^-]+" CMAKE_SYSTEM_PROCESSOR "${triplet}")
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER "${triplet}-gcc")
set(CMAKE_CXX_COMPILER "${triplet}-g++")
set(CMAKE_LIBRARY_ARCHITECTURE "${triplet}")
set(ENV{PKG_CONFIG_LIBDIR} "/usr/lib/${triplet}/pkgconfig")
