// Small real files for samples: they open in players and viewers.
#pragma once

#include <string>

#include "app/sample/random.h"

namespace app {

/// PNG files.
struct SamplePhoto {
    std::string picture;
    std::string thumbnail;  ///< the same, smaller
};
[[nodiscard]] SamplePhoto pickPhoto(Random& random);

/// A WAV file with half a second of a fading tone.
[[nodiscard]] std::string pickVoice(Random& random);

/// An MP4 file of one second.
[[nodiscard]] std::string pickVideo(Random& random);

/// A PDF file of one page.
[[nodiscard]] std::string pickDocument(Random& random);

}  // namespace app
