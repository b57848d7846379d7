// The files of assets/, which pages carry.
#pragma once

#include "app/base/embedded_file.h"

namespace app::view {

extern const EmbeddedFile kStyle;
extern const EmbeddedFile kSearchScript;

}  // namespace app::view
