#include "fuzz/sandbox.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

#include "fuzz/property.h"

namespace fs = std::filesystem;

namespace fuzz {
namespace {

constexpr const char* kSecret = "what somebody else wrote";

std::set<std::string> namesIn(const std::string& folder) {
    std::set<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        names.insert(entry.path().filename());
    return names;
}

std::string bytesOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

std::string makeRoot() {
    const std::string memory = "/dev/shm";
    std::string root = (fs::is_directory(memory) ? memory : fs::temp_directory_path().string()) + "/fuzz-XXXXXX";
    if (mkdtemp(root.data()) == nullptr) throw std::runtime_error("no temporary folder");
    return root;
}

}  // namespace

Sandbox::Sandbox() : root_(makeRoot()) {
    write(root_ + "/other/secret", kSecret);
    for (const char* folder : {"/audio", "/file", "/image", "/video", "/db/plugin"})
        fs::create_directories(account() + folder);
    fs::create_directories(packageMessages());
    fs::create_directories(packageFiles());
    fs::create_directories(tree() + "imfiles");
}

Sandbox::~Sandbox() {
    std::error_code ignored;
    fs::remove_all(root_, ignored);
}

void Sandbox::enter(dbTrans& transfer) const {
    transfer.rootPath = account();
    transfer.backupPath = backup();
    transfer.packageSubDir = kUser;
    transfer.packageVersion = kVersion;
    transfer.userAudioDir = account() + "/audio/";
    transfer.userFileDir = account() + "/file/";
    transfer.userImageDir = account() + "/image/";
    transfer.userVideoDir = account() + "/video/";
}

void Sandbox::write(const std::string& path, const std::string& bytes) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

void Sandbox::makeDatabase(const std::string& name) const {
    write(account() + "/" + name, "");
}

void Sandbox::requireUntouched(const std::string& folder) const {
    require(namesIn(root_) == std::set<std::string>{"other", "user"}, "nothing is made beside the user's folders");
    require(namesIn(root_ + "/user") == std::set<std::string>{"account", "backup"}, "nothing is made above them");
    require(namesIn(root_ + "/other") == std::set<std::string>{"secret"}, "nothing is made in other folders");
    require(bytesOf(root_ + "/other/secret") == kSecret, "nothing is changed in other folders");
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        require(!entry.is_symlink(), "no link is made");
        require(!entry.is_regular_file() || bytesOf(entry.path()) != kSecret, "no other file is copied in");
    }
}

void Sandbox::empty(const std::string& folder) {
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        fs::remove_all(entry.path());
}

}  // namespace fuzz
