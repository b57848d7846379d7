#include "app/attachments/attachment_files.h"

#include <tuple>

#include "host/files/confined_files.h"

namespace app {
namespace {

long long& countOf(AttachmentPlace place, AttachmentCounts& counts) {
    switch (place) {
        case AttachmentPlace::refused:
            return counts.refused;
        case AttachmentPlace::source:
            return counts.onlyInSource;
        case AttachmentPlace::account:
            return counts.onlyInAccount;
        case AttachmentPlace::both:
            return counts.both;
        case AttachmentPlace::neither:
            break;
    }
    return counts.neither;
}

}  // namespace

bool AttachmentFile::operator<(const AttachmentFile& other) const {
    return std::tie(folder, source, accountName) < std::tie(other.folder, other.source, other.accountName);
}

void AttachmentFiles::add(AttachmentFile file) {
    const auto [added, isNew] = files_.insert(std::move(file));
    if (!isNew) return;
    ++usesOfSource_[added->source];
    ++usesOfAccountName_[added->folder + added->accountName];
}

AttachmentCounts AttachmentFiles::count() const {
    return forEach([](const AttachmentFile& /*file*/, AttachmentPlace /*place*/) {});
}

Bytes AttachmentFiles::compareCopies(const AttachmentFile& file) const {
    return compareBytes(sourceFolder_ + file.source, accountPathOf(file));
}

// Empty when the account does not have the file.
std::string AttachmentFiles::accountPathOf(const AttachmentFile& file) const {
    if (accountRoot_.empty()) return "";
    const std::string folder = accountRoot_ + file.folder;
    for (const std::string& name : {file.otherName, file.accountName}) {
        if (tools::confinedFileExists(folder, name)) return folder + name;
    }
    return "";
}

AttachmentPlace AttachmentFiles::placeOf(const AttachmentFile& file) const {
    for (const std::string& name : {file.source, file.otherName, file.accountName}) {
        if (!tools::isConfinedName(name)) return AttachmentPlace::refused;
    }
    const bool inSource = tools::confinedFileExists(sourceFolder_, file.source);
    const bool inAccount = !accountPathOf(file).empty();
    if (inSource && inAccount) return AttachmentPlace::both;
    if (inSource) return AttachmentPlace::source;
    return inAccount ? AttachmentPlace::account : AttachmentPlace::neither;
}

AttachmentPlace AttachmentFiles::countedPlace(const AttachmentFile& file, AttachmentCounts& counts) const {
    const AttachmentPlace place = placeOf(file);
    ++counts.named;
    ++countOf(place, counts);
    return place;
}

}  // namespace app
