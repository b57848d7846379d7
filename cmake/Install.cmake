# cmake --install: headers, libraries, the program, and the package that find_package(chat_transfer) finds.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/chat_transfer")
set(include_dir "${CMAKE_INSTALL_INCLUDEDIR}/chat_transfer")

set(exported chat_transfer_host chat_transfer_transfer chat_transfer_c chat_transfer_sqlite)
if(TARGET chat_transfer_sqlite3mc)
  list(APPEND exported chat_transfer_sqlite3mc)
endif()
set_target_properties(chat_transfer_sqlite PROPERTIES EXPORT_NAME sqlite)

# A handed-over SQLite belongs to the parent project, which also installs it: there is no package of ours to export then.
if(NOT CHAT_TRANSFER_SQLITE_TARGET)
  install(
    TARGETS ${exported}
    EXPORT chat_transfer
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")
  install(EXPORT chat_transfer NAMESPACE chat_transfer:: FILE chat_transferTargets.cmake DESTINATION "${package_dir}")
  configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/chat_transferConfig.cmake.in"
                                "${PROJECT_BINARY_DIR}/chat_transferConfig.cmake" INSTALL_DESTINATION "${package_dir}")
  write_basic_package_version_file("${PROJECT_BINARY_DIR}/chat_transferConfigVersion.cmake"
                                   COMPATIBILITY SameMinorVersion)
  install(FILES "${PROJECT_BINARY_DIR}/chat_transferConfig.cmake"
                "${PROJECT_BINARY_DIR}/chat_transferConfigVersion.cmake" DESTINATION "${package_dir}")
endif()

# For hosts that are not built by CMake. The paths are relative to the file, so that the tree can be moved.
if(TARGET chat_transfer_sqlite3mc)
  set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
  file(RELATIVE_PATH up "/${pkgconfig_dir}" /)
  foreach(name chat_transfer chat_transfer_c)
    configure_file("${CMAKE_CURRENT_LIST_DIR}/${name}.pc.in" "${PROJECT_BINARY_DIR}/${name}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/${name}.pc" DESTINATION "${pkgconfig_dir}")
  endforeach()
endif()

# Only what a host includes; the other headers are the inside of the libraries.
install(FILES host/dbUtils.h host/rehearsal.h host/tools.h host/CAES.h host/json.h "${PROJECT_BINARY_DIR}/host/generated/host/json_names.h"
        DESTINATION "${include_dir}/host")
install(FILES "${PROJECT_BINARY_DIR}/host/generated/chat_transfer/parson.h" DESTINATION "${include_dir}/chat_transfer")
install(FILES c/chat_transfer.h DESTINATION "${include_dir}/c")
install(FILES transfer/dbTrans.h transfer/error_codes.h transfer/omission.h transfer/progress_listener.h transfer/records.h
              transfer/transaction_guard.h transfer/transfer_report.h DESTINATION "${include_dir}/transfer")
if(TARGET chat-transfer)
  install(TARGETS chat-transfer RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
endif()
