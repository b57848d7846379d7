# Writes OUTPUT, a C++ source with the files of FOLDER and their digests: cmake -DFOLDER=... -DOUTPUT=... -P this file
function(embed symbol name)
  file(READ "${FOLDER}/${name}" text)
  file(SHA256 "${FOLDER}/${name}" digest)
  file(APPEND "${OUTPUT}" "const Asset ${symbol}{R\"asset(${text})asset\", \"${digest}\"};\n")
endfunction()

file(WRITE "${OUTPUT}" "#include \"app/view/assets.h\"\n\nnamespace app::view {\n\n")
embed(kStyle style.css)
embed(kSearchScript search.js)
file(APPEND "${OUTPUT}" "\n}  // namespace app::view\n")
