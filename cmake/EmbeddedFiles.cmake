# chat_transfer_embed(TARGET HEADER NAMESPACE symbol file...): makes files a part of TARGET, each with its digest. Defines
# every symbol, an app::EmbeddedFile, in NAMESPACE; HEADER declares them. Any bytes will do.
function(chat_transfer_embed target header namespace)
  set(definitions "")
  while(ARGN)
    list(POP_FRONT ARGN symbol file)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
    file(READ "${file}" bytes HEX)
    file(SIZE "${file}" size)
    file(SHA256 "${file}" digest)
    string(REGEX REPLACE "(..)" "\\\\x\\1" bytes "${bytes}")
    string(APPEND definitions "const EmbeddedFile ${symbol}{{\"${bytes}\", ${size}}, \"${digest}\"};\n")
  endwhile()
  set(source "${CMAKE_CURRENT_BINARY_DIR}/${target}_files.cpp")
  file(CONFIGURE OUTPUT "${source}" @ONLY CONTENT
       "#include \"${header}\"\n\nnamespace ${namespace} {\n\n${definitions}\n}  // namespace ${namespace}\n")
  target_sources(${target} PRIVATE "${source}")
endfunction()
