#include "app/attachment_check.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <tuple>

#include "host/confined_files.h"
#include "host/file_handle.h"
#include "host/tools.h"
#include "transfer/attachment_body.h"

namespace app {
namespace {

using tools::detail::FileHandle;

std::string lastComponent(const std::string& path) {
    std::string name;
    tools::getNameFromPath(path, name);
    return name;
}

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

bool haveSameBytes(const std::string& one, const std::string& other) {
    const FileHandle first = tools::detail::openRegularFile(AT_FDCWD, one.c_str(), false);
    const FileHandle second = tools::detail::openRegularFile(AT_FDCWD, other.c_str(), false);
    if (!first.valid() || !second.valid()) return false;
    std::array<char, 1 << 16> a;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    std::array<char, 1 << 16> b;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    for (;;) {
        const ssize_t sizeA = readBlock(first, a);
        const ssize_t sizeB = readBlock(second, b);
        if (sizeA < 0 || sizeA != sizeB) return false;
        if (sizeA == 0) return true;
        if (std::memcmp(a.data(), b.data(), static_cast<std::size_t>(sizeA)) != 0) return false;
    }
}

}  // namespace

bool AttachmentCheck::File::operator<(const File& other) const {
    return std::tie(kindFolder, packagePath, importName) <
           std::tie(other.kindFolder, other.packagePath, other.importName);
}

void AttachmentCheck::collect(const std::string& body, int msgType) {
    const transfer::AttachmentBody names = transfer::readAttachmentBody(body, msgType);
    if (!names.complete) return;
    if (msgType == transfer::kImageMessage) {
        for (const std::string& path : {names.mediaUrl, names.thumbUrl}) {
            add({transfer::kImageFolder, path, lastComponent(path), lastComponent(path)});
        }
        return;
    }
    const char* folder = msgType == transfer::kVoiceMessage ? transfer::kAudioFolder : transfer::kFileFolder;
    add({folder, names.packagePath(), lastComponent(names.packagePath()), names.fileName});
}

void AttachmentCheck::add(File file) {
    const auto [added, isNew] = files_.insert(std::move(file));
    if (!isNew) return;
    ++usesOfPackagePath_[added->packagePath];
    ++usesOfAccountName_[added->kindFolder + added->importName];
}

bool AttachmentCheck::isRefused(const File& file) const {
    return !tools::isConfinedName(file.packagePath) || !tools::isConfinedName(file.exportName) ||
           !tools::isConfinedName(file.importName);
}

bool AttachmentCheck::isInPackage(const File& file) const {
    return tools::confinedFileExists(packageFolder_, file.packagePath);
}

// Empty when the account does not have the file.
std::string AttachmentCheck::accountNameOf(const File& file) const {
    const std::string folder = accountRoot_ + file.kindFolder;
    for (const std::string& name : {file.exportName, file.importName}) {
        if (tools::confinedFileExists(folder, name)) return folder + name;
    }
    return "";
}

AttachmentCheck::Counts AttachmentCheck::countInPackage() const {
    Counts counts;
    counts.named = static_cast<long long>(files_.size());
    for (const File& file : files_) {
        if (isRefused(file)) {
            ++counts.refused;
        } else if (isInPackage(file)) {
            ++counts.inPackage;
        } else {
            ++counts.nowhere;
        }
    }
    return counts;
}

AttachmentCheck::Counts AttachmentCheck::compare(Direction direction, VerifyReport& report) const {
    Counts counts;
    counts.named = static_cast<long long>(files_.size());
    for (const File& file : files_)
        compareOne(file, direction, report, counts);
    return counts;
}

void AttachmentCheck::compareOne(const File& file, Direction direction, VerifyReport& report, Counts& counts) const {
    if (isRefused(file)) {
        ++counts.refused;
        report.add(Rule::attachmentNameRefused);
        return;
    }
    const bool inPackage = isInPackage(file);
    const std::string inAccount = accountNameOf(file);
    if (inPackage) ++counts.inPackage;
    if (inPackage && !inAccount.empty()) {
        ++counts.compared;
        if (!haveSameBytes(packageFolder_ + file.packagePath, inAccount)) noteDifference(file, report);
    } else if (inPackage) {
        if (direction != Direction::exported) report.add(Finding::attachmentNotInAccount, file.packagePath);
    } else if (inAccount.empty()) {
        ++counts.nowhere;
    } else if (file.packagePath.find('/') == std::string::npos) {
        report.add(Rule::attachmentWithoutFolder);
    } else if (direction != Direction::imported) {
        report.add(Finding::attachmentNotInPackage, file.packagePath);
    }
}

void AttachmentCheck::noteDifference(const File& file, VerifyReport& report) const {
    const bool shared =
        usesOfPackagePath_.at(file.packagePath) > 1 || usesOfAccountName_.at(file.kindFolder + file.importName) > 1;
    if (shared) {
        report.add(Rule::attachmentNameShared);
    } else {
        report.add(Finding::attachmentDiffers, file.packagePath);
    }
}

}  // namespace app
