# What every target of our own code is compiled with; third-party sources are left alone.
function(chat_transfer_own_code target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wconversion -Wshadow)
  if(CHAT_TRANSFER_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(CHAT_TRANSFER_SANITIZE)
    target_compile_options(${target} PUBLIC -fsanitize=${CHAT_TRANSFER_SANITIZE} -fno-sanitize-recover=all
                                            -fno-omit-frame-pointer)
    target_link_options(${target} PUBLIC -fsanitize=${CHAT_TRANSFER_SANITIZE})
  endif()
endfunction()
