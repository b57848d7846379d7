// Where an export is built before it gets its name.
#pragma once

#include <string>

#include "app/places/hidden_folder.h"

namespace app {

/// A hidden folder inside the folder that is to hold the package. The package moves to its final name only when it is
/// whole and on the disk.
class PackageStaging {
public:
    /// Makes `target` where it is missing. Throws Failure when the target holds a package already, cannot be written
    /// to, or is in use by another export.
    explicit PackageStaging(const std::string& target);

    /// Makes this the working directory: paths of the transfer below it stay short, however long the target's path is.
    void enter() const;

    /// Flushes the package's folders (its files are flushed as they are written) and gives it its final name. Throws
    /// Failure.
    void publish();

    /// The folder that gets the package.
    const std::string& target() const { return target_; }

    /// The final name.
    const std::string& package() const { return package_; }

private:
    std::string target_;
    std::string package_;
    HiddenFolder hidden_;
};

}  // namespace app
