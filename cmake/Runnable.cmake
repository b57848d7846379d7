# chat_transfer_runnable(VARIABLE TARGET): what to start to run TARGET. When it was built for another processor, that is a
# script which calls the emulator: tests that start programs need not know. Without -p, the shell would give a test that has
# put its rights aside all of them back.
function(chat_transfer_runnable variable target)
  set(runnable "$<TARGET_FILE:${target}>")
  if(CMAKE_CROSSCOMPILING_EMULATOR)
    set(runnable "${CMAKE_CURRENT_BINARY_DIR}/emulated-${target}")
    file(GENERATE OUTPUT "${runnable}"
         CONTENT "#!/bin/sh -p\nexec ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:${target}> \"$@\"\n"
         FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  endif()
  set(${variable} "${runnable}" PARENT_SCOPE)
endfunction()
