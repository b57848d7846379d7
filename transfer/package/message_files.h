// The numbered message files of a package.
#pragma once

#include <new>
#include <string>

#include "host/base/fixed_text.h"
#include "host/files/whole_file.h"
#include "transfer/dbTrans.h"
#include "transfer/format/package_format.h"
#include "transfer/format/package_text.h"

namespace chattransfer {

/// Writes numbered message files and keeps the account of them.
class MessageFiles {
public:
    explicit MessageFiles(dbTrans& transfer) : transfer_(transfer), file_(transfer.packageVersion) {}

    /// False when there is no memory for the text.
    bool begin() {
        messages_ = 0;
        return built([this] { file_.begin(); });
    }

    /// Appends a day object with the records of [first, last). False when there is no memory for its text.
    bool addDay(const CalendarDay& day, const imsdk::st_dbMessageBean* first, const imsdk::st_dbMessageBean* last) {
        messages_ += last - first;
        return built([&] { file_.addDay(day, first, last); });
    }

    /// Writes the file under the next number. A failure is reported and passed over: the other files are worth having.
    void finish() {
        const tools::FixedText<50> name(kMessageFileName, number_++);
        const std::string path = transfer_.msgFileDir + name.text();
        if (tools::writeWholeFile(path, file_.finish(), tools::Flush::later)) {
            ++transfer_.report.messageFilesWritten;
            transfer_.report.messagesWritten += messages_;
        } else {
            transfer_.report.skip(path, "the message file could not be written");
        }
    }

    /// How many files were finished.
    int number() const { return number_; }

private:
    template <class Build>
    static bool built(Build build) try {
        build();
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }

    dbTrans& transfer_;
    MessageFileText file_;
    long long messages_ = 0;
    int number_ = 0;
};

}  // namespace chattransfer
