#include "host/files/temporary_name.h"

#include <unistd.h>

#include <atomic>

namespace tools {
namespace {

constexpr std::string_view kBegin = ".chat-transfer";
constexpr std::string_view kEnd = ".part";

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kHexDigits = "0123456789abcdef";

// Takes `expected` off the front of `rest`.
bool take(std::string_view& rest, std::string_view expected) {
    if (rest.substr(0, expected.size()) != expected) return false;
    rest.remove_prefix(expected.size());
    return true;
}

// Takes a run of these characters off the front of `rest`: its length.
std::size_t takeAll(std::string_view& rest, std::string_view characters) {
    const std::size_t end = rest.find_first_not_of(characters);
    const std::size_t size = end == std::string_view::npos ? rest.size() : end;
    rest.remove_prefix(size);
    return size;
}

bool isNumbered(std::string_view name, std::string_view begin) {
    return take(name, begin) && takeAll(name, kDigits) > 0 && take(name, "-") && takeAll(name, kDigits) > 0 &&
           name == kEnd;
}

// As encrypted and decrypted files were called before all temporary names became of one kind.
bool isRandom(std::string_view name) {
    constexpr std::size_t kRandomDigits = 16;
    return take(name, ".caes-") && takeAll(name, kHexDigits) == kRandomDigits && name == kEnd;
}

}  // namespace

std::string temporaryName(std::string_view what) {
    std::string name(kBegin);
    if (!what.empty()) name.append("-").append(what);
    return name.append(kEnd);
}

std::string nextTemporaryName() {
    static std::atomic<unsigned> counter{0};
    return temporaryName(std::to_string(getpid()) + "-" + std::to_string(counter++));
}

bool isTemporaryName(std::string_view name) {
    return isNumbered(name, ".chat-transfer-") || isNumbered(name, ".new-") || isRandom(name);
}

}  // namespace tools
