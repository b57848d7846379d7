// The numbered message files of a package.
#pragma once

#include <new>
#include <string>
#include <utility>

#include "host/base/fixed_text.h"
#include "host/files/whole_file.h"
#include "transfer/format/package_format.h"
#include "transfer/format/package_text.h"
#include "transfer/transfer_report.h"

namespace chattransfer {

/// Writes numbered message files and keeps the account of them.
class MessageFiles {
public:
    /// `folder` ends in "/".
    MessageFiles(std::string folder, const std::string& version, TransferReport& report)
        : folder_(std::move(folder)), report_(report), file_(version) {}

    /// False when there is no memory for the text.
    [[nodiscard]] bool begin() {
        messages_ = 0;
        return built([this] { file_.begin(); });
    }

    /// Appends a day object with the records of [first, last). False when there is no memory for its text.
    [[nodiscard]] bool addDay(const CalendarDay& day, const imsdk::st_dbMessageBean* first,
                              const imsdk::st_dbMessageBean* last) {
        messages_ += last - first;
        return built([&] { file_.addDay(day, first, last); });
    }

    /// Writes the file under the next number. A failure is reported and passed over: the other files are worth having.
    void finish() {
        const tools::FixedText<kMessageFileNameSize> name(kMessageFileName, number_++);
        const std::string path = folder_ + name.text();
        if (tools::writeWholeFile(path, file_.finish(), tools::Flush::later)) {
            ++report_.messageFilesWritten;
            report_.messagesWritten += messages_;
        } else {
            report_.skip(path, Omission::messageFileNotWritten);
        }
    }

    /// How many files were finished.
    [[nodiscard]] int number() const { return number_; }

private:
    template <class Build>
    [[nodiscard]] static bool built(Build build) try {
        build();
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }

    std::string folder_;
    TransferReport& report_;
    MessageFileText file_;
    long long messages_ = 0;
    int number_ = 0;
};

}  // namespace chattransfer
