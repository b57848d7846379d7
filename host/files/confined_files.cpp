#include "host/files/confined_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "host/files/new_file.h"
#include "host/files/whole_file.h"
#include "host/tools.h"

namespace tools {

// A name resolved down to the directory that holds its last component. The directory stays open until its
// ConfinedFolder resolves another name.
struct detail::ConfinedPlace {
    int folder = -1;
    std::string name;
    int error = 0;  // why the directory could not be reached

    [[nodiscard]] bool missing() const { return error == ENOENT; }
    // A name that is none, or a link or a file where a folder should be; anything else is a failure of the machine.
    [[nodiscard]] bool refused() const { return error == EINVAL || error == ELOOP || error == ENOTDIR; }
    [[nodiscard]] bool valid() const { return folder >= 0; }
};

namespace {

using detail::FileHandle;
using detail::MissingFolders;
using Place = detail::ConfinedPlace;

constexpr std::size_t kLongestComponent = 255;  // NAME_MAX of the usual file systems
constexpr mode_t kOwnerOnly = 0700;

// Takes the next component off the front of `rest`: empty ones and "." count for nothing. False when there is none.
bool nextComponent(std::string_view& rest, std::string_view& component) {
    while (!rest.empty()) {
        const std::size_t slash = rest.find('/');
        const std::string_view next = rest.substr(0, slash);
        rest.remove_prefix(slash == std::string_view::npos ? rest.size() : slash + 1);
        if (next.empty() || next == ".") continue;
        component = next;
        return true;
    }
    return false;
}

bool hasComponent(std::string_view name) {
    std::string_view component;
    return nextComponent(name, component);
}

std::string_view lastComponentOf(std::string_view name) {
    std::string_view component;
    while (nextComponent(name, component)) {
    }
    return component;
}

std::string_view parentsOf(std::string_view name) {
    const std::string_view last = lastComponentOf(name);
    return name.substr(0, static_cast<std::size_t>(last.data() - name.data()));
}

// The folder `parents` beneath the open folder `from`; an invalid handle, with the reason in errno, when it cannot be
// reached without following a link.
FileHandle walk(int from, std::string_view parents, MissingFolders missing) {
    FileHandle reached;
    std::string_view component;
    while (nextComponent(parents, component)) {
        const int at = reached.valid() ? reached.get() : from;
        const std::string name(component);
        if (missing == MissingFolders::create) mkdirat(at, name.c_str(), kOwnerOnly);
        // Packages without their attachments are usual, and asking costs half of what an open costs that fails.
        struct stat status {};
        if (fstatat(at, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return {};
        FileHandle next = detail::openFolder(at, name.c_str(), false);
        if (!next.valid()) return {};
        reached = std::move(next);
    }
    return reached;
}

FileKind kindAt(const Place& place) {
    if (!place.valid()) return place.missing() || place.refused() ? FileKind::none : FileKind::unknown;
    struct stat status {};
    const int result = fstatat(place.folder, place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW);
    return detail::statusFrom(result, status).kind;
}

FileOutcome copyBetween(const Place& source, const Place& target, Flush flush) {
    const FileHandle from = detail::openRegularFile(source.folder, source.name.c_str(), false);
    if (!from.valid()) return FileOutcome::failed;
    detail::NewFile to(target.folder, target.name);
    const bool copied = to.valid() && detail::copyBytes(from.get(), to.get()) && to.commit(flush);
    return copied ? FileOutcome::done : FileOutcome::failed;
}

FileOutcome moveBetween(const Place& source, const Place& target) {
    if (renameat(source.folder, source.name.c_str(), target.folder, target.name.c_str()) == 0) {
        return FileOutcome::done;
    }
    if (errno != EXDEV || copyBetween(source, target, Flush::now) != FileOutcome::done) return FileOutcome::failed;
    return unlinkat(source.folder, source.name.c_str(), 0) == 0 ? FileOutcome::done : FileOutcome::failed;
}

}  // namespace

bool isConfinedName(const std::string& name) {
    if (name.find('\0') != std::string::npos) return false;
    std::string_view rest = name;
    std::string_view component;
    while (nextComponent(rest, component)) {
        if (component == ".." || component.size() > kLongestComponent) return false;
    }
    return hasComponent(name);
}

// --- One folder ---

// Opens the folder itself; when that fails the reason is in errno.
bool ConfinedFolder::open(MissingFolders missing) {
    if (itself_.valid()) return true;
    FileHandle start = detail::openFolder(AT_FDCWD, path_.empty() ? "." : path_.c_str(), true);
    itself_ = start.valid() && hasComponent(below_) ? walk(start.get(), below_, missing) : std::move(start);
    return itself_.valid();
}

// The directory at `parents`, or -1 with the reason in errno.
int ConfinedFolder::enter(std::string_view parents, MissingFolders missing) {
    if (!open(missing) || !hasComponent(parents)) return itself_.get();
    while (parents.back() == '/')
        parents.remove_suffix(1);
    if (inner_.valid() && innerName_ == parents) return inner_.get();
    FileHandle reached = walk(itself_.get(), parents, missing);
    if (!reached.valid()) return -1;
    inner_ = std::move(reached);
    innerName_ = parents;
    return inner_.get();
}

Place ConfinedFolder::find(const std::string& name) {
    Place place;
    if (!isConfinedName(name)) {
        place.error = EINVAL;
        return place;
    }
    place.name = lastComponentOf(name);
    place.folder = enter(parentsOf(name), MissingFolders::stay);
    if (!place.valid()) place.error = errno;
    return place;
}

FileKind ConfinedFolder::kindOf(const std::string& name) {
    if (hasVanished(name)) return FileKind::none;
    if (hasAppeared(name)) return FileKind::regular;
    return kindAt(find(name));
}

bool ConfinedFolder::hasFile(const std::string& name) {
    return kindOf(name) == FileKind::regular;
}

bool ConfinedFolder::hasFolder(const std::string& name) {
    return isConfinedName(name) && enter(name, MissingFolders::stay) >= 0;
}

bool ConfinedFolder::isTaken(const std::string& name) {
    if (hasAppeared(name)) return true;
    const Place place = find(name);
    return place.valid() ? kindAt(place) != FileKind::none : !place.missing();
}

bool ConfinedFolder::read(const std::string& name, std::string& bytes) {
    const Place place = find(name);
    return place.valid() && detail::readWholeFile(place.folder, place.name.c_str(), bytes);
}

int ConfinedFolder::createFolder(const std::string& name) {
    if (hasComponent(name) && !isConfinedName(name)) return -1;
    if (rehearsal_ != nullptr) return rehearseFolder(name);
    if (enter(name, MissingFolders::create) >= 0) return 0;
    const bool again = errno == ENOENT && createDir(path_.c_str()) == 0;
    return again && enter(name, MissingFolders::create) >= 0 ? 0 : -1;
}

// --- Rehearsals ---

// One spelling for each place, however the name is written.
std::string ConfinedFolder::fullPath(std::string_view name) const {
    std::string path = path_ + below_;
    std::string_view component;
    while (nextComponent(name, component))
        path.append("/").append(component);
    return path;
}

bool ConfinedFolder::hasAppeared(std::string_view name) const {
    return rehearsal_ != nullptr && rehearsal_->hasAppeared(fullPath(name));
}

bool ConfinedFolder::hasVanished(std::string_view name) const {
    return rehearsal_ != nullptr && rehearsal_->hasVanished(fullPath(name));
}

int ConfinedFolder::rehearseFolder(const std::string& name) {
    if (enter(name, MissingFolders::stay) >= 0) return 0;
    if (errno != ENOENT) return -1;
    rehearsal_->appear(fullPath(name));
    return 0;
}

// --- Copies and moves ---

// transfer(source, target) with both names resolved.
template <class Transfer>
FileOutcome ConfinedFolder::transferTo(ConfinedFolder& to, const std::string& source, const std::string& target,
                                       Transfer transfer) {
    if (&to == this) {  // resolving the target would close the directory of the source
        ConfinedFolder again(path_, below_);
        return transferTo(again, source, target, transfer);
    }
    if (!isConfinedName(source) || !isConfinedName(target)) return FileOutcome::refused;
    if (hasVanished(source)) return FileOutcome::missing;
    const Place from = find(source);
    if (from.missing()) return FileOutcome::missing;
    if (!from.valid()) return from.refused() ? FileOutcome::refused : FileOutcome::failed;
    const FileKind kind = kindAt(from);
    if (kind == FileKind::none) return FileOutcome::missing;
    if (kind == FileKind::folder || kind == FileKind::other) return FileOutcome::refused;
    const Place place = to.find(target);
    const bool appears = place.missing() && to.hasAppeared(parentsOf(target));
    if (!place.valid() && !appears) return place.refused() ? FileOutcome::refused : FileOutcome::failed;
    return transfer(from, place);
}

FileOutcome ConfinedFolder::copyTo(ConfinedFolder& to, const std::string& source, const std::string& target,
                                   Flush flush) {
    return transferTo(to, source, target, [&](const Place& from, const Place& place) {
        if (to.rehearsal_ == nullptr) return copyBetween(from, place, flush);
        to.rehearsal_->appear(to.fullPath(target));
        return FileOutcome::done;
    });
}

FileOutcome ConfinedFolder::moveTo(ConfinedFolder& to, const std::string& source, const std::string& target) {
    return transferTo(to, source, target, [&](const Place& from, const Place& place) {
        if (to.rehearsal_ == nullptr) return moveBetween(from, place);
        to.rehearsal_->vanish(fullPath(source));
        to.rehearsal_->appear(to.fullPath(target));
        return FileOutcome::done;
    });
}

// --- Single names ---

bool confinedFileExists(const std::string& folder, const std::string& name) {
    return ConfinedFolder(folder).hasFile(name);
}

bool confinedFolderExists(const std::string& folder, const std::string& name) {
    return ConfinedFolder(folder).hasFolder(name);
}

bool confinedNameTaken(const std::string& folder, const std::string& name) {
    return ConfinedFolder(folder).isTaken(name);
}

FileOutcome copyConfined(const std::string& fromFolder, const std::string& from, const std::string& toFolder,
                         const std::string& to, Flush flush) {
    ConfinedFolder target(toFolder);
    return ConfinedFolder(fromFolder).copyTo(target, from, to, flush);
}

int createConfinedDir(const std::string& folder, const std::string& name) {
    return ConfinedFolder(folder).createFolder(name);
}

}  // namespace tools
