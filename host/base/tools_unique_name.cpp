#include <openssl/sha.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "host/tools.h"

// Names for downloaded media. People should recognise the picture in their folder, so the name keeps a readable piece
// of the URL; everything that a file system or a careless program could take for more than a name goes. What tells two
// URLs apart is the hash alone: it covers every byte of the URL, and it is lower-case, so that names also differ where
// the file system ignores case. The longest name has 40 + 1 + 40 + 1 + 10 = 92 bytes.
namespace tools {
namespace {

constexpr std::size_t kMaxStemSize = 40;
constexpr std::size_t kMaxExtensionSize = 10;
constexpr std::size_t kHashBytesInName = 20;

// ASCII only, whatever the locale says.
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isPlain(char c) {
    const char low = lowered(c);
    return isDigit(c) || (low >= 'a' && low <= 'z');
}

std::string loweredText(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lowered);
    return result;
}

// What stands after the last slash of the path, without query and fragment. The host of a URL is no part of its path.
std::string_view lastComponent(std::string_view url) {
    std::string_view path = url.substr(0, url.find_first_of("?#"));
    const std::size_t scheme = path.find("://");
    if (scheme != std::string_view::npos) {
        path.remove_prefix(scheme + 3);
        path.remove_prefix(std::min(path.find('/'), path.size()));
    }
    return path.substr(path.rfind('/') + 1);
}

// Endings by which a walk over a transfer folder recognises the transfer's own files: a picture must not pass for one.
bool isReservedExtension(std::string_view extension) {
    constexpr std::array<std::string_view, 5> reserved = {"mg", "ct", "nt", "rm", "decrypt"};
    return std::find(reserved.begin(), reserved.end(), extension) != reserved.end();
}

bool isExtension(std::string_view text) {
    return !text.empty() && text.size() <= kMaxExtensionSize && std::all_of(text.begin(), text.end(), isPlain);
}

// Names of devices on Windows, with any extension and in any case: con, prn, aux, nul, com0 to com9, lpt0 to lpt9.
bool isDeviceName(std::string_view stem) {
    const std::string name = loweredText(stem);
    if (name.size() == 4 && isDigit(name[3])) {
        return name.compare(0, 3, "com") == 0 || name.compare(0, 3, "lpt") == 0;
    }
    return name == "con" || name == "prn" || name == "aux" || name == "nul";
}

// Keeps letters, digits and underscores; each run of anything else becomes one "-", none of them at an end.
std::string readableStem(std::string_view text) {
    std::string stem;
    for (const char c : text) {
        if (isPlain(c) || c == '_') {
            stem += c;
        } else if (!stem.empty() && stem.back() != '-') {
            stem += '-';
        }
        if (stem.size() == kMaxStemSize) {
            break;
        }
    }
    if (!stem.empty() && stem.back() == '-') {
        stem.pop_back();
    }
    return stem.empty() ? "file" : stem;
}

std::string hashInHex(const std::string& url) {
    std::array<unsigned char, SHA256_DIGEST_LENGTH> digest{};
    if (SHA256(reinterpret_cast<const unsigned char*>(url.data()), url.size(), digest.data()) == nullptr) {
        throw std::runtime_error("cannot compute the hash of a URL");
    }
    std::string text;
    for (std::size_t i = 0; i < kHashBytesInName; ++i) {
        text += "0123456789abcdef"[digest[i] >> 4];
        text += "0123456789abcdef"[digest[i] & 15];
    }
    return text;
}

}  // namespace

std::string getUniqueNameByUrl(const std::string& url, bool unique) {
    const std::string_view component = lastComponent(url);
    const std::size_t dot = component.rfind('.');
    const std::string extension = dot == std::string_view::npos ? "" : loweredText(component.substr(dot + 1));
    const bool hasExtension = isExtension(extension);
    std::string name = readableStem(hasExtension ? component.substr(0, dot) : component);
    if (unique) {
        name += "_" + hashInHex(url);
    } else if (isDeviceName(name)) {
        name = "file-" + name;
    }
    if (hasExtension && !isReservedExtension(extension)) {
        name += "." + extension;
    }
    return name;
}

}  // namespace tools
