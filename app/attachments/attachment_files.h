// Attachments that records name, and which of two sides has them: the package or tree, and the account.
#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>

#include "app/attachments/compare_bytes.h"

namespace app {

/// What a file is to the message that names it.
enum class AttachmentRole {
    content,
    preview,  ///< the thumbnail of the picture before it, or the still of the video behind it
};

/// One attachment.
struct AttachmentFile {
    std::string source;       ///< path below the attachments of the package or tree
    std::string folder;       ///< the account's folder for its kind, such as "/audio/"
    std::string accountName;  ///< what an import calls it there
    std::string otherName;    ///< under which the account may have it, too; most often the same
    AttachmentRole role = AttachmentRole::content;

    bool operator<(const AttachmentFile& other) const;
};

enum class AttachmentPlace {
    refused,  ///< a name leads outside its folder: nobody looks for it
    neither,
    source,
    account,
    both,
};

struct AttachmentCounts {
    long long named = 0;
    long long refused = 0;
    long long neither = 0;
    long long onlyInSource = 0;
    long long onlyInAccount = 0;
    long long both = 0;

    [[nodiscard]] long long inSource() const { return onlyInSource + both; }
    [[nodiscard]] long long inAccount() const { return onlyInAccount + both; }
};

/// A set of attachments, each once.
class AttachmentFiles {
public:
    /// `sourceFolder` ends in "/". An empty `accountRoot` stands for no account.
    AttachmentFiles(std::string sourceFolder, std::string accountRoot)
        : sourceFolder_(std::move(sourceFolder)), accountRoot_(std::move(accountRoot)) {}

    void add(AttachmentFile file);

    /// A function that adds what it is called with.
    [[nodiscard]] auto adder() {
        return [this](AttachmentFile file) { add(std::move(file)); };
    }

    /// Calls visit(file, place) for each attachment.
    template <class Visit>
    [[nodiscard]] AttachmentCounts forEach(Visit visit) const {
        AttachmentCounts counts;
        for (const AttachmentFile& file : files_)
            visit(file, countedPlace(file, counts));
        return counts;
    }

    [[nodiscard]] AttachmentCounts count() const;

    /// Holds the two copies of a file that is on both sides against each other.
    [[nodiscard]] Bytes compareCopies(const AttachmentFile& file) const;

    /// True when another attachment has the same path in the source, or the same name in the account.
    [[nodiscard]] bool sharesSource(const AttachmentFile& file) const { return usesOfSource_.at(file.source) > 1; }
    [[nodiscard]] bool sharesAccountName(const AttachmentFile& file) const {
        return usesOfAccountName_.at(file.folder + file.accountName) > 1;
    }

private:
    [[nodiscard]] AttachmentPlace placeOf(const AttachmentFile& file) const;
    [[nodiscard]] AttachmentPlace countedPlace(const AttachmentFile& file, AttachmentCounts& counts) const;
    [[nodiscard]] std::string accountPathOf(const AttachmentFile& file) const;

    std::string sourceFolder_;
    std::string accountRoot_;
    std::set<AttachmentFile> files_;
    std::map<std::string, int> usesOfSource_;
    std::map<std::string, int> usesOfAccountName_;
};

}  // namespace app
