// The attachments that selected messages name, as an export will copy them.
#pragma once

#include <string>
#include <vector>

namespace chattransfer {

/// The lists of paths, which are not owned, by the kind of message.
struct AttachmentPaths {
    std::vector<std::string>& audio;
    std::vector<std::string>& file;
    std::vector<std::string>& image;

    /// Appends the paths that a body names. 1 when it is a JSON object of a type that carries attachments, else 0.
    [[nodiscard]] int take(const std::string& body, int msgType);
};

}  // namespace chattransfer
