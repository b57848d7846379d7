# A Debian package: cpack --config build/release/CPackConfig.cmake. It holds what cmake --install installs.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME chat-transfer)
set(CPACK_PACKAGE_CONTACT "The developers of chat_transfer")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION
    "Moves the messages, recent contacts, notes, rooms and attachments of a chat account between its databases, backup
packages and encrypted trees. Holds the program chat-transfer and the libraries to build it into a client.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION comm)
set(CPACK_STRIP_FILES ON)
# What the program needs is read from the program itself; where a tool for that is missing, these names have to do.
find_program(CHAT_TRANSFER_SHLIBDEPS dpkg-shlibdeps)
find_program(CHAT_TRANSFER_FILE file)
mark_as_advanced(CHAT_TRANSFER_SHLIBDEPS CHAT_TRANSFER_FILE)
if(CHAT_TRANSFER_SHLIBDEPS AND CHAT_TRANSFER_FILE)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
else()
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6, libgcc-s1, libssl3 | libssl3t64, libstdc++6")
endif()
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "libssl-dev")
include(CPack)
