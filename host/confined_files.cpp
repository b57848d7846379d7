#include "host/confined_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

#include "host/file_handle.h"
#include "host/tools.h"

namespace tools {
namespace {

using detail::FileHandle;

constexpr std::size_t kLongestComponent = 255;  // NAME_MAX of the usual file systems
constexpr mode_t kOwnerOnly = 0700;

std::vector<std::string> componentsOf(std::string_view name) {
    std::vector<std::string> components;
    while (!name.empty()) {
        const std::size_t slash = name.find('/');
        const std::string_view component = name.substr(0, slash);
        if (!component.empty() && component != ".") components.emplace_back(component);
        name.remove_prefix(slash == std::string_view::npos ? name.size() : slash + 1);
    }
    return components;
}

FileHandle openFolder(int parent, const char* name, bool followLinks) {
    const int links = followLinks ? 0 : O_NOFOLLOW;
    return FileHandle(openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | links));
}

// A name beneath a folder, resolved down to the directory that holds its last component.
struct Place {
    FileHandle folder;
    std::string name;
    int error = 0;  // why the folder could not be reached

    void enter(FileHandle next) {
        error = next.valid() ? 0 : errno;
        folder = std::move(next);
    }
    bool missing() const { return error == ENOENT; }
    // A name that is none, or a link or a file where a folder should be; anything else is a failure of the machine.
    bool refused() const { return error == EINVAL || error == ELOOP || error == ENOTDIR; }
    bool valid() const { return folder.valid(); }
};

enum class MissingFolders { stay, create };

Place resolve(const std::string& folder, const std::string& name, MissingFolders missing) {
    Place place;
    if (!isConfinedName(name)) {
        place.error = EINVAL;
        return place;
    }
    std::vector<std::string> components = componentsOf(name);
    place.name = components.back();
    components.pop_back();
    place.enter(openFolder(AT_FDCWD, folder.empty() ? "." : folder.c_str(), true));
    for (const std::string& component : components) {
        if (!place.valid()) break;
        if (missing == MissingFolders::create) mkdirat(place.folder.get(), component.c_str(), kOwnerOnly);
        place.enter(openFolder(place.folder.get(), component.c_str(), false));
    }
    return place;
}

enum class Kind { none, regular, other };

Kind kindOf(const Place& place) {
    struct stat status {};
    if (!place.valid() || fstatat(place.folder.get(), place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return Kind::none;
    }
    return S_ISREG(status.st_mode) ? Kind::regular : Kind::other;
}

FileOutcome copyBetween(const Place& source, const Place& target, Flush flush) {
    const FileHandle from = detail::openRegularFile(source.folder.get(), source.name.c_str(), false);
    if (!from.valid()) return FileOutcome::failed;
    detail::NewFile to(target.folder.get(), target.name);
    const bool copied = to.valid() && detail::copyBytes(from.get(), to.get()) && to.commit(flush);
    return copied ? FileOutcome::done : FileOutcome::failed;
}

FileOutcome moveBetween(const Place& source, const Place& target) {
    if (renameat(source.folder.get(), source.name.c_str(), target.folder.get(), target.name.c_str()) == 0) {
        return FileOutcome::done;
    }
    if (errno != EXDEV || copyBetween(source, target, Flush::now) != FileOutcome::done) return FileOutcome::failed;
    return unlinkat(source.folder.get(), source.name.c_str(), 0) == 0 ? FileOutcome::done : FileOutcome::failed;
}

// transfer(source, target) with both names resolved.
template <class Transfer>
FileOutcome transferConfined(const std::string& fromFolder, const std::string& from, const std::string& toFolder,
                             const std::string& to, Transfer transfer) {
    if (!isConfinedName(from) || !isConfinedName(to)) return FileOutcome::refused;
    const Place source = resolve(fromFolder, from, MissingFolders::stay);
    if (source.missing()) return FileOutcome::missing;
    if (!source.valid()) return source.refused() ? FileOutcome::refused : FileOutcome::failed;
    const Kind kind = kindOf(source);
    if (kind != Kind::regular) return kind == Kind::none ? FileOutcome::missing : FileOutcome::refused;
    const Place target = resolve(toFolder, to, MissingFolders::stay);
    if (!target.valid()) return target.refused() ? FileOutcome::refused : FileOutcome::failed;
    return transfer(source, target);
}

}  // namespace

bool isConfinedName(const std::string& name) {
    if (name.find('\0') != std::string::npos) return false;
    const std::vector<std::string> components = componentsOf(name);
    for (const std::string& component : components) {
        if (component == ".." || component.size() > kLongestComponent) return false;
    }
    return !components.empty();
}

bool confinedFileExists(const std::string& folder, const std::string& name) {
    return kindOf(resolve(folder, name, MissingFolders::stay)) == Kind::regular;
}

bool confinedFolderExists(const std::string& folder, const std::string& name) {
    const Place place = resolve(folder, name, MissingFolders::stay);
    return place.valid() && openFolder(place.folder.get(), place.name.c_str(), false).valid();
}

bool confinedNameTaken(const std::string& folder, const std::string& name) {
    const Place place = resolve(folder, name, MissingFolders::stay);
    return place.valid() ? kindOf(place) != Kind::none : !place.missing();
}

bool confinedNameSeen(const std::string& folder, const std::string& name) {
    return kindOf(resolve(folder, name, MissingFolders::stay)) != Kind::none;
}

FileOutcome copyConfined(const std::string& fromFolder, const std::string& from, const std::string& toFolder,
                         const std::string& to, Flush flush) {
    return transferConfined(fromFolder, from, toFolder, to, [flush](const Place& source, const Place& target) {
        return copyBetween(source, target, flush);
    });
}

FileOutcome moveConfined(const std::string& fromFolder, const std::string& from, const std::string& toFolder,
                         const std::string& to) {
    return transferConfined(fromFolder, from, toFolder, to, moveBetween);
}

int createConfinedDir(const std::string& folder, const std::string& name) {
    if (componentsOf(name).empty()) return createDir(folder.c_str());
    Place place = resolve(folder, name, MissingFolders::create);
    if (place.missing() && createDir(folder.c_str()) == 0) place = resolve(folder, name, MissingFolders::create);
    if (!place.valid()) return -1;
    mkdirat(place.folder.get(), place.name.c_str(), kOwnerOnly);
    return openFolder(place.folder.get(), place.name.c_str(), false).valid() ? 0 : -1;
}

bool readConfined(const std::string& folder, const std::string& name, std::string& bytes) try {
    const Place place = resolve(folder, name, MissingFolders::stay);
    if (!place.valid()) return false;
    const FileHandle file = detail::openRegularFile(place.folder.get(), place.name.c_str(), false);
    return file.valid() && detail::readAll(file.get(), bytes);
} catch (const std::bad_alloc&) {
    return false;  // larger than the memory
}

}  // namespace tools
