// Attachments of a sample tree: the files below imfiles, and the bodies that name them.
#pragma once

#include <string>
#include <utility>

#include "app/sample/random.h"
#include "app/sample/sample_plan.h"
#include "transfer/format/tree_body.h"

namespace app {

/// Voice, file, image, pictures and video messages.
[[nodiscard]] AttachmentKinds treeAttachments();

class TreeAttachmentMaker {
public:
    /// `folder` is the tree's attachment folder, ending in "/".
    explicit TreeAttachmentMaker(std::string folder) : folder_(std::move(folder)) {}

    /// Writes the files of a message or note of the type and gives its body with the keys `keys`. The files are named
    /// after `id`, in folders named after `day`. Throws Failure.
    [[nodiscard]] std::string make(int type, const chattransfer::TreeFileKeys& keys, const std::string& id,
                                   const std::string& day, Random& random) const;

private:
    [[nodiscard]] std::string write(const std::string& name, const std::string& bytes) const;

    std::string folder_;
};

}  // namespace app
