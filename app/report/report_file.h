// The file of --report.
#pragma once

#include <memory>
#include <string>

#include "host/files/file_handle.h"
#include "host/files/new_file.h"

namespace app {

/// Begun before the command does anything, so that a report that cannot be written is known before there is something
/// to report. For its owner only: it names paths and conversations.
class ReportFile {
public:
    /// `given` is a new name or that of an earlier report, which is replaced; nothing else is. Throws Failure.
    explicit ReportFile(const std::string& given);

    /// Puts the report under its name, whole. Throws Failure.
    void write(const std::string& json);

private:
    std::string path_;
    tools::detail::FileHandle folder_;
    std::unique_ptr<tools::detail::NewFile> file_;
};

}  // namespace app
