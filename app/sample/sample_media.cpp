#include "app/sample/sample_media.h"

#include <array>
#include <cstdint>
#include <vector>

namespace app {
namespace {

void appendLittleEndian(std::string& out, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        out += static_cast<char>((value >> (8 * i)) & 0xFFU);
}

void appendBigEndian(std::string& out, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        out += static_cast<char>((value >> shift) & 0xFFU);
}

// CRC-32 as PNG defines it.
std::uint32_t crc32(const std::string& bytes) {
    std::uint32_t crc = 0xFFFFFFFFU;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    return crc ^ 0xFFFFFFFFU;
}

std::uint32_t adler32(const std::string& bytes) {
    constexpr std::uint32_t kModulus = 65521;
    std::uint32_t low = 1;
    std::uint32_t high = 0;
    for (const char byte : bytes) {
        low = (low + static_cast<unsigned char>(byte)) % kModulus;
        high = (high + low) % kModulus;
    }
    return (high << 16) | low;
}

void appendChunk(std::string& png, const std::string& type, const std::string& data) {
    appendBigEndian(png, static_cast<std::uint32_t>(data.size()));
    png += type + data;
    appendBigEndian(png, crc32(type + data));
}

// A zlib stream of one stored block: `bytes` is shorter than 64 KiB.
std::string stored(const std::string& bytes) {
    std::string stream = "\x78\x01\x01";
    appendLittleEndian(stream, static_cast<std::uint32_t>(bytes.size()), 2);
    appendLittleEndian(stream, ~static_cast<std::uint32_t>(bytes.size()) & 0xFFFFU, 2);
    stream += bytes;
    appendBigEndian(stream, adler32(bytes));
    return stream;
}

std::string gradient(Random& random, unsigned size) {
    const auto red = static_cast<unsigned>(random.below(256));
    const auto blue = static_cast<unsigned>(random.below(256));
    std::string rows;
    for (unsigned y = 0; y < size; ++y) {
        rows += '\0';  // no filter
        for (unsigned x = 0; x < size; ++x) {
            rows += static_cast<char>((red + x * 255 / size) & 0xFFU);
            rows += static_cast<char>(y * 255 / size);
            rows += static_cast<char>((blue + (x + y) * 127 / size) & 0xFFU);
        }
    }
    return rows;
}

// Eight-bit samples of a triangle wave that fades out; `period` in samples.
std::string tone(unsigned samples, unsigned period) {
    std::string sound;
    sound.reserve(samples);
    for (unsigned i = 0; i < samples; ++i) {
        const unsigned phase = i % period * 200 / period;
        const int wave = static_cast<int>(phase < 100 ? phase : 200 - phase) - 50;
        sound += static_cast<char>(128 + wave * static_cast<int>(samples - i) / static_cast<int>(samples));
    }
    return sound;
}

}  // namespace

std::string makeVoice(Random& random) {
    constexpr std::uint32_t kSamplesPerSecond = 8000;
    constexpr std::uint32_t kHeaderAfterLength = 36;
    const auto samples = static_cast<unsigned>(1000 + 2 * random.below(3500));
    const auto period = static_cast<unsigned>(12 + random.below(40));
    std::string wav = "RIFF";
    appendLittleEndian(wav, kHeaderAfterLength + samples, 4);
    wav += "WAVEfmt ";
    appendLittleEndian(wav, 16, 4);                 // length of the format block
    appendLittleEndian(wav, 1, 2);                  // uncompressed
    appendLittleEndian(wav, 1, 2);                  // one channel
    appendLittleEndian(wav, kSamplesPerSecond, 4);  // samples per second
    appendLittleEndian(wav, kSamplesPerSecond, 4);  // bytes per second
    appendLittleEndian(wav, 1, 2);                  // bytes per sample
    appendLittleEndian(wav, 8, 2);                  // bits per sample
    wav += "data";
    appendLittleEndian(wav, samples, 4);
    return wav + tone(samples, period);
}

std::string makePicture(Random& random, unsigned size) {
    std::string header;
    appendBigEndian(header, size);
    appendBigEndian(header, size);
    header += std::string("\x08\x02\x00\x00\x00", 5);  // eight bits, colours, no interlacing
    std::string png = "\x89PNG\r\n\x1a\n";
    appendChunk(png, "IHDR", header);
    appendChunk(png, "IDAT", stored(gradient(random, size)));
    appendChunk(png, "IEND", "");
    return png;
}

std::string makeDocument(const std::string& title) {
    const std::string page = "BT /F1 24 Tf 72 720 Td (" + title + ") Tj ET";
    const std::array<std::string, 5> objects = {
        "<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] /Contents 4 0 R /Resources << /Font << /F1 5 0 R >> >> "
        ">>",
        "<< /Length " + std::to_string(page.size()) + " >>\nstream\n" + page + "\nendstream",
        "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>"};
    std::string pdf = "%PDF-1.4\n";
    std::string index = "xref\n0 6\n0000000000 65535 f \n";
    for (std::size_t i = 0; i < objects.size(); ++i) {
        const std::string offset = std::to_string(pdf.size());
        index += std::string(10 - offset.size(), '0') + offset + " 00000 n \n";
        pdf += std::to_string(i + 1) + " 0 obj\n" + objects.at(i) + "\nendobj\n";
    }
    const std::string indexOffset = std::to_string(pdf.size());
    return pdf + index + "trailer\n<< /Size 6 /Root 1 0 R >>\nstartxref\n" + indexOffset + "\n%%EOF\n";
}

}  // namespace app
