// Small real files for samples: they open in players and viewers.
#pragma once

#include <string>

#include "app/sample/random.h"

namespace app {

/// A WAV file with a fading tone of up to a second.
std::string makeVoice(Random& random);

/// A PNG picture of size x size pixels with a colour gradient. `size` is 1 to 120.
std::string makePicture(Random& random, unsigned size);

/// A one-page PDF that shows `title`, a text of ASCII letters, digits and blanks.
std::string makeDocument(const std::string& title);

}  // namespace app
