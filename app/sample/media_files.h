// The files of media/.
#pragma once

#include "app/base/embedded_file.h"

namespace app {

extern const EmbeddedFile kDocument1;
extern const EmbeddedFile kDocument2;
extern const EmbeddedFile kPhoto1;
extern const EmbeddedFile kPhoto1Small;
extern const EmbeddedFile kPhoto2;
extern const EmbeddedFile kPhoto2Small;
extern const EmbeddedFile kPhoto3;
extern const EmbeddedFile kPhoto3Small;
extern const EmbeddedFile kVideo1;
extern const EmbeddedFile kVideo2;
extern const EmbeddedFile kVoice1;
extern const EmbeddedFile kVoice2;
extern const EmbeddedFile kVoice3;

}  // namespace app
