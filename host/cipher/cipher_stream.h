#pragma once

#include "host/cipher/cipher_chunk.h"
#include "host/cipher/cipher_container.h"
#include "host/cipher/cipher_files.h"
#include "host/cipher/cipher_key.h"

/// Whole files through two buffers of one chunk each, whatever the size of the file.
namespace cipher {

/// The chunk at work, and the one read ahead to learn whether the first is the last.
struct ChunkPair {
    Chunk current;
    Chunk next;
};

/// Writes the container of `input` with this header to `output`. treeKey belongs to the header's tree salt and
/// iterations. The same header, key and text always give the same bytes: the file salt has to be fresh for every file.
/// Throws Failure; `output` is not committed here.
void sealFile(InputFile& input, OutputFile& output, const Header& header, const TreeKey& treeKey, ChunkPair& chunks);

/// Reads the header at the beginning of a container. Throws Failure as decodeHeader does.
[[nodiscard]] Header readHeader(InputFile& input);

/// Writes the text of the container to `output`, each chunk only after it verified. `input` stands behind the header.
/// Throws Failure, naming the chunk that does not verify; `output` is not committed here.
void openFile(InputFile& input, OutputFile& output, const Header& header, const TreeKey& treeKey, ChunkPair& chunks);

}  // namespace cipher
