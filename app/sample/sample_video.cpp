#include "app/sample/sample_video.h"

#include <cstdint>

namespace app {
namespace {

constexpr std::uint32_t kWidth = 32;
constexpr std::uint32_t kHeight = 24;
constexpr std::uint32_t kBytesPerPixel = 3;
constexpr std::uint32_t kFrameSize = kWidth * kHeight * kBytesPerPixel;
constexpr std::uint32_t kFrames = 8;
constexpr std::uint32_t kFramesPerSecond = 8;
constexpr std::uint32_t kMicrosecondsPerFrame = 1000000 / kFramesPerSecond;
constexpr const char* kFrameName = "00db";  // stream 0, uncompressed

std::string number(std::uint32_t value, int bytes = 4) {
    std::string text;
    for (int i = 0; i < bytes; ++i)
        text += static_cast<char>((value >> (8 * i)) & 0xFFU);
    return text;
}

std::string zeros(std::size_t count) {
    std::string text;
    text.resize(count);
    return text;
}

std::string chunk(const std::string& name, const std::string& data) {
    return name + number(static_cast<std::uint32_t>(data.size())) + data;
}

std::string mainHeader() {
    constexpr std::uint32_t kHasIndex = 0x10;
    return chunk("avih", number(kMicrosecondsPerFrame) + number(kFrameSize * kFramesPerSecond) + number(0) +
                             number(kHasIndex) + number(kFrames) + number(0) + number(1) + number(kFrameSize) +
                             number(kWidth) + number(kHeight) + zeros(16));
}

std::string streamHeaders() {
    constexpr std::uint32_t kUsualQuality = 0xFFFFFFFFU;
    const std::string stream = std::string("vidsDIB ") + zeros(12) + number(1) + number(kFramesPerSecond) + number(0) +
                               number(kFrames) + number(kFrameSize) + number(kUsualQuality) + number(0) + zeros(4) +
                               number(kWidth, 2) + number(kHeight, 2);
    const std::string picture = number(40) + number(kWidth) + number(kHeight) + number(1, 2) +
                                number(8 * kBytesPerPixel, 2) + number(0) + number(kFrameSize) + zeros(16);
    return chunk("strh", stream) + chunk("strf", picture);
}

std::string frame(std::uint32_t ground, std::uint32_t bar, std::uint32_t position) {
    std::string pixels;
    for (std::uint32_t i = 0; i < kWidth * kHeight; ++i) {
        const bool onBar = i % kWidth / 4 == position % (kWidth / 4);
        pixels += number(onBar ? bar : ground, kBytesPerPixel);
    }
    return pixels;
}

}  // namespace

std::string makeVideo(Random& random) {
    constexpr std::uint32_t kKeyFrame = 0x10;
    const auto ground = static_cast<std::uint32_t>(random.below(0x1000000));
    std::string movie = "movi";
    std::string index;
    for (std::uint32_t i = 0; i < kFrames; ++i) {
        index += kFrameName + number(kKeyFrame) + number(static_cast<std::uint32_t>(movie.size())) + number(kFrameSize);
        movie += chunk(kFrameName, frame(ground, ~ground, i));
    }
    const std::string headers = chunk("LIST", "hdrl" + mainHeader() + chunk("LIST", "strl" + streamHeaders()));
    return chunk("RIFF", "AVI " + headers + chunk("LIST", movie) + chunk("idx1", index));
}

}  // namespace app
