#include "app/attachments/attachment_files.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <tuple>

#include "host/files/confined_files.h"
#include "host/files/file_handle.h"

namespace app {
namespace {

using tools::detail::FileHandle;

ssize_t readBlock(const FileHandle& file, std::array<char, 1 << 16>& block) {
    std::size_t filled = 0;
    while (filled < block.size()) {
        const ssize_t count = read(file.get(), block.data() + filled, block.size() - filled);
        if (count < 0) return -1;
        if (count == 0) break;
        filled += static_cast<std::size_t>(count);
    }
    return static_cast<ssize_t>(filled);
}

enum class Bytes { equal, different, unreadable };

Bytes compareBytesOf(const std::string& one, const std::string& other) {
    const FileHandle first = tools::detail::openRegularFile(AT_FDCWD, one.c_str(), false);
    const FileHandle second = tools::detail::openRegularFile(AT_FDCWD, other.c_str(), false);
    if (!first.valid() || !second.valid()) return Bytes::unreadable;
    std::array<char, 1 << 16> a;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    std::array<char, 1 << 16> b;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    for (;;) {
        const ssize_t sizeA = readBlock(first, a);
        const ssize_t sizeB = readBlock(second, b);
        if (sizeA < 0 || sizeB < 0) return Bytes::unreadable;
        if (sizeA != sizeB || std::memcmp(a.data(), b.data(), static_cast<std::size_t>(sizeA)) != 0)
            return Bytes::different;
        if (sizeA == 0) return Bytes::equal;
    }
}

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

void AttachmentFiles::compareBytes(const AttachmentFile& file, bool excused, VerifyReport& report) const {
    const Bytes bytes = compareBytesOf(sourceFolder_ + file.source, accountPathOf(file));
    if (bytes == Bytes::equal) return;
    if (bytes == Bytes::unreadable) {
        report.add(Finding::fileUnreadable, "attachment " + file.source + ", on one side or on both");
    } else if (excused) {
        report.add(Rule::attachmentNameShared);
    } else {
        report.add(Finding::attachmentDiffers, file.source);
    }
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
