#include "app/sample/sample_media.h"

#include <array>

#include "app/sample/media_files.h"

namespace app {

SamplePhoto pickPhoto(Random& random) {
    const std::array<std::array<std::string_view, 2>, 3> photos = {{{kPhoto1.bytes, kPhoto1Small.bytes},
                                                                    {kPhoto2.bytes, kPhoto2Small.bytes},
                                                                    {kPhoto3.bytes, kPhoto3Small.bytes}}};
    const auto [picture, thumbnail] = random.pick(photos);
    return {std::string(picture), std::string(thumbnail)};
}

std::string pickVoice(Random& random) {
    return std::string(random.pick(std::array{kVoice1.bytes, kVoice2.bytes, kVoice3.bytes}));
}

std::string pickVideo(Random& random) {
    return std::string(random.pick(std::array{kVideo1.bytes, kVideo2.bytes}));
}

std::string pickDocument(Random& random) {
    return std::string(random.pick(std::array{kDocument1.bytes, kDocument2.bytes}));
}

}  // namespace app
