// A folder in the words of the person who named it.
#pragma once

#include <string>

namespace app {

/// Commands resolve folders and work inside them; people look for "../backup/qelmsg_0/..." when that is what they
/// wrote.
struct GivenFolder {
    std::string given;     ///< as it was written
    std::string resolved;  ///< what that is: an absolute path, without a "/" at its end
    std::string working;   ///< the absolute folder that names beginning with "./" are meant from

    /// A name as operations give it, absolute or beginning with "./", in the person's words. Names of what lies
    /// elsewhere, and other texts, stay as they are.
    [[nodiscard]] std::string nameOf(const std::string& name) const;
};

}  // namespace app
