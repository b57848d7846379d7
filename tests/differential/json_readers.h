// The readings of one JSON text that have to agree: by the library's parser, into a tree of ours, and without a tree.
#pragma once

#include <string>

namespace test {

/// What a reading makes of a text that it refuses.
inline const std::string kRefused = "refused";

/// Reads past the whole text.
std::string bySkipping(std::string text);

/// The readings of a text that may hold no comments.
void expectSame(const std::string& text);

/// The readings of a text that may hold comments. The reader without a tree knows none.
void expectSameWithComments(const std::string& text);

/// Whether the library takes the text.
bool isAccepted(const std::string& text);
bool isAcceptedWithComments(const std::string& text);

}  // namespace test
