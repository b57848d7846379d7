// What a page may load, said to the browser on the page itself: a second wall behind the escaping.
#pragma once

#include <string>

namespace app::view {

enum class PageKind {
    plain,         ///< text and plots
    conversation,  ///< pictures, voice and video of the folder besides
    search,        ///< our script, and the parts of the search index that it loads
};

/// The policy for the page's meta element. Nothing is allowed but our own style sheet and script, known by their
/// digests, and on pages of conversations pictures and sounds from the disk.
[[nodiscard]] std::string contentPolicy(PageKind kind);

/// The bytes that `hex` spells, in base64.
[[nodiscard]] std::string base64OfHex(const std::string& hex);

}  // namespace app::view
