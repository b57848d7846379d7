#include "host/cipher/cipher_stream.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "host/cipher/cipher_error.h"

namespace cipher {
namespace {

bool fill(Chunk& chunk, std::size_t size, InputFile& input) {
    chunk.setSize(input.read(chunk.data(), size));
    return chunk.size() > 0;
}

// Calls work(number, last, chunk) for the pieces of `size` bytes that the rest of the input consists of. An empty input
// is one empty last piece; else the last one holds 1 to `size` bytes.
template <typename Work>
void forEachChunk(InputFile& input, std::size_t size, ChunkPair& chunks, Work work) {
    fill(chunks.current, size, input);
    bool last = false;
    for (std::uint64_t number = 0; !last; ++number) {
        last = chunks.current.size() < size || !fill(chunks.next, size, input);
        work(number, last, chunks.current);
        std::swap(chunks.current, chunks.next);
    }
}

[[noreturn]] void failAt(std::uint64_t number) {
    if (number == 0) {
        throw Failure("wrong key, or the file is damaged, cut or extended");
    }
    throw Failure("damaged, cut or extended data at chunk " + std::to_string(number));
}

}  // namespace

void sealFile(InputFile& input, OutputFile& output, const Header& header, const TreeKey& treeKey, ChunkPair& chunks) {
    const HeaderBytes headerBytes = encodeHeader(header);
    ChunkCipher cipher(ChunkCipher::Direction::seal, deriveFileKey(treeKey, header.fileSalt), headerBytes);
    output.write(headerBytes.data(), headerBytes.size());
    forEachChunk(input, kChunkSize, chunks, [&](std::uint64_t number, bool last, Chunk& chunk) {
        cipher.seal(number, last, chunk);
        output.write(chunk.data(), chunk.size());
    });
}

Header readHeader(InputFile& input) {
    HeaderBytes bytes{};
    const std::size_t present = input.read(bytes.data(), bytes.size());
    return decodeHeader(bytes, present);
}

void openFile(InputFile& input, OutputFile& output, const Header& header, const TreeKey& treeKey, ChunkPair& chunks) {
    ChunkCipher cipher(ChunkCipher::Direction::open, deriveFileKey(treeKey, header.fileSalt), encodeHeader(header));
    forEachChunk(input, kSealedChunkSize, chunks, [&](std::uint64_t number, bool last, Chunk& chunk) {
        const bool verified = cipher.open(number, last, chunk);
        const bool emptyTail = number > 0 && chunk.size() == 0;
        if (!verified || emptyTail) {
            failAt(number);
        }
        output.write(chunk.data(), chunk.size());
    });
}

}  // namespace cipher
