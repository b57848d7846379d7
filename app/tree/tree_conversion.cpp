#include "app/tree/tree_conversion.h"

#include <array>
#include <string_view>
#include <utility>
#include <vector>

#include "app/base/failure.h"
#include "app/base/interruption.h"
#include "app/base/paths.h"
#include "app/tree/tree_files.h"
#include "host/CAES.h"
#include "host/files/confined_files.h"
#include "host/files/temporary_name.h"
#include "host/tools.h"

namespace app {
namespace {

using chattransfer::Omission;

class Conversion {
public:
    Conversion(CipherDirection direction, const std::string& from, const std::string& to, const std::string& key,
               ProgressBar& progress)
        : direction_(direction), from_(from + "/"), to_(to), key_(key), progress_(progress) {}

    ConversionCounts run() {
        const TreeListing listing = listTree(from_);
        total_ = listing.entries.size();
        for (const UnreadableFolder& folder : listing.unreadable)
            lose(folder.name.empty() ? from_.substr(0, from_.size() - 1) : folder.name, Omission::folderUnreadable,
                 folder.reason);
        for (const TreeEntry& entry : listing.entries) {
            take(entry);
            countEntry();
        }
        for (const std::string& copy : decryptedCopies_)
            takeDecryptedCopy(copy);
        return std::move(counts_);
    }

private:
    void take(const TreeEntry& entry) {
        if (entry.kind == TreeEntryKind::folder) {
            makeFolder(entry.name);
        } else if (entry.kind == TreeEntryKind::other) {
            counts_.report.skip(entry.name, Omission::treeEntryIrregular);
        } else if (tools::isTemporaryName(lastComponent(entry.name))) {
            counts_.report.skip(entry.name, Omission::treeFileLeftover);
        } else if (isDecryptedCopy(entry.name)) {
            decryptedCopies_.push_back(entry.name);  // the record file itself goes first
        } else if (!isRecordFile(entry.name)) {
            copy(entry.name, entry.name);
            ++counts_.copied;
        } else if (direction_ == CipherDirection::encrypt) {
            encrypt(entry.name, entry.name);
        } else {
            decrypt(entry.name);
        }
    }

    void takeDecryptedCopy(const std::string& name) {
        const std::string target = nameWithoutDecrypted(name);
        if (tools::confinedNameTaken(to_, target)) {
            counts_.report.skip(name, Omission::treeFileSecondCopy);
        } else if (direction_ == CipherDirection::encrypt) {
            encrypt(name, target);
        } else {
            copy(name, target);
            ++counts_.takenDecrypted;
        }
    }

    void makeFolder(const std::string& name) const {
        if (tools::createConfinedDir(to_, name) == 0) return;
        throw Failure({0, "A folder cannot be made", to_ + name, "", kCheckThePlace});
    }

    void copy(const std::string& name, const std::string& target) const {
        const tools::FileOutcome outcome = tools::copyConfined(from_, name, to_, target, tools::Flush::later);
        if (outcome == tools::FileOutcome::done) return;
        throw Failure({0, "A file cannot be copied", from_ + name, "",
                       std::string("check that you may read it; ") + kCheckThePlace});
    }

    void encrypt(const std::string& name, const std::string& target) {
        if (isEncrypted(from_ + name)) {
            throw Failure({0, "A file is encrypted already", from_ + name, "",
                           "give a plain tree; chat-transfer decrypt-tree makes one"});
        }
        const std::string error = runCipher(name, target);
        if (!error.empty()) throw Failure({0, "A file cannot be encrypted", from_ + name, error, kCheckThePlace});
        ++counts_.converted;
    }

    void decrypt(const std::string& name) {
        const std::string error = runCipher(name, name);
        if (error.empty()) {
            ++counts_.converted;
        } else if (error.compare(0, kCannotWrite.size(), kCannotWrite) == 0) {
            throw Failure({0, "A decrypted file cannot be written", to_ + name, error, kCheckThePlace});
        } else {
            lose(name, Omission::treeFileUndecryptable, error);
        }
    }

    // The reason of a failure; empty on success.
    std::string runCipher(const std::string& name, const std::string& target) const {
        std::array<char, 256> error{};
        const int result = CAES().File_Aes_Go_Block(direction_ == CipherDirection::encrypt, key_.c_str(),
                                                    (from_ + name).c_str(), (to_ + target).c_str(), error.data());
        return result == 0 ? "" : error.data();
    }

    void lose(const std::string& name, Omission kind, const std::string& detail) {
        counts_.report.skip(name, kind, detail);
        ++counts_.failed;
    }

    void countEntry() {
        constexpr unsigned long long kMillisecondsBetweenReports = 500;
        ++done_;
        const unsigned long long now = tools::get_Startmsec();
        if (done_ != total_ && now - lastReport_ < kMillisecondsBetweenReports) return;
        lastReport_ = now;
        const std::string text = std::to_string(done_) + "/" + std::to_string(total_);
        progress_.onProgress(0, 1, static_cast<int>(done_ * 100 / total_), text.c_str());
    }

    static constexpr std::string_view kCannotWrite = "cannot write output";

    const CipherDirection direction_;
    const std::string from_;
    const std::string& to_;
    const std::string& key_;
    ProgressBar& progress_;
    ConversionCounts counts_;
    std::vector<std::string> decryptedCopies_;
    std::size_t total_ = 0;
    std::size_t done_ = 0;
    unsigned long long lastReport_ = tools::get_Startmsec();
};

}  // namespace

ConversionCounts convertTree(CipherDirection direction, const std::string& from, const std::string& to,
                             const std::string& key, ProgressBar& progress) {
    ConversionCounts counts;
    interruptible([&] { counts = Conversion(direction, from, to, key, progress).run(); }, wordsForNothingDone);
    return counts;
}

}  // namespace app
