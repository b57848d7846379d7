#include "app/account/key_source.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "app/account/closed_database.h"
#include "app/base/failure.h"
#include "host/files/file_handle.h"

namespace app {
namespace {

using tools::detail::FileHandle;

// A longer file is hardly a key but a mistaken path.
constexpr std::size_t kLongestKey = 4096;

constexpr const char* kKeyVariable = "CHAT_TRANSFER_KEY";

FileHandle openKeyFile(const std::string& path) {
    FileHandle file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status {};
    if (!file.valid() || fstat(file.get(), &status) != 0) {
        throw Failure({0, "The key file cannot be read", path, systemWords(errno), "check --key-file"});
    }
    if (S_ISREG(status.st_mode) && (status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        warn("others may read the key file " + path + "; run chmod 600 on it");
    }
    return file;
}

// Reads into one buffer that never moves, so that no copy is left behind.
std::string readKeyText(int descriptor, const std::string& path) {
    std::string text(kLongestKey + 3, '\0');
    const ssize_t size = tools::detail::readBlock(descriptor, text.data(), text.size());
    if (size < 0) {
        const int error = errno;
        wipe(text);
        throw Failure({0, "The key file cannot be read", path, systemWords(error), "check --key-file"});
    }
    text.resize(static_cast<std::size_t>(size));
    return text;
}

// One line end belongs to the file, not to the key: editors and echo add it.
void stripLineEnd(std::string& text) {
    if (!text.empty() && text.back() == '\n') text.pop_back();
    if (!text.empty() && text.back() == '\r') text.pop_back();
}

const char* faultOf(const std::string& key) {
    if (key.empty()) return "it holds no key";
    if (key.size() > kLongestKey) return "it is too long for a key";
    return key.find('\0') != std::string::npos ? "it holds a NUL byte, which no key can have" : nullptr;
}

SecretText keyOfFile(const std::string& path) {
    const FileHandle file = openKeyFile(path);
    std::string text = readKeyText(file.get(), path);
    stripLineEnd(text);
    const char* fault = faultOf(text);
    if (fault == nullptr) return SecretText(std::move(text));
    wipe(text);
    throw Failure({0, "The key file cannot be used", path, fault, "the file has to hold the key as one line of text"});
}

SecretText keyOfEnvironment() {
    char* value = std::getenv(kKeyVariable);
    if (value == nullptr) return {};
    SecretText key{std::string(value)};
    volatile char* bytes = value;
    for (std::size_t i = key.text().size(); i > 0; --i)
        bytes[i - 1] = '\0';
    unsetenv(kKeyVariable);
    return key;
}

}  // namespace

SecretText findKey(const KeyOptions& options, const Account& account) {
    if (!options.keyFile.empty()) return keyOfFile(options.keyFile);
    const FileLook look = lookAt(account.database(Database::main));
    const bool isNew = look == FileLook::missing || look == FileLook::empty;
    if (options.askKey) return askForKey(isNew ? KeyPurpose::choose : KeyPurpose::unlock);
    SecretText key = keyOfEnvironment();
    if (!key.empty() || look != FileLook::encrypted || !canAskForKey()) return key;
    return askForKey(KeyPurpose::unlock);
}

SecretText findTreeKey(const KeyOptions& options, const std::string& folder, KeyPurpose purpose) {
    // A folder of trees is no account: whether a key is chosen or one that exists is asked for, the command knows.
    if (options.keyFile.empty() && options.askKey) return askForKey(purpose);
    return findKey(options, Account(folder));
}

SecretText requireTreeKey(const KeyOptions& options, const std::string& folder, KeyPurpose purpose) {
    SecretText key = findTreeKey(options, folder, purpose);
    if (!key.empty()) return key;
    if (canAskForKey()) return askForKey(purpose);
    throw Failure({0, "A key is needed: the files of a tree are always encrypted", "", "no key was given",
                   std::string("give it with ") + kWaysToGiveAKey});
}

}  // namespace app
