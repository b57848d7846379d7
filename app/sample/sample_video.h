// A small real video for samples.
#pragma once

#include <string>

#include "app/sample/random.h"

namespace app {

/// An AVI file of one second: eight uncompressed pictures of 32 x 24 pixels, a bar that moves over a plain ground.
std::string makeVideo(Random& random);

}  // namespace app
