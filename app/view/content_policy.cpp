#include "app/view/content_policy.h"

#include <cstdint>

#include "app/view/assets.h"

namespace app::view {
namespace {

std::uint32_t valueOf(char digit) {
    return static_cast<std::uint32_t>(digit <= '9' ? digit - '0' : digit - 'a' + 10);
}

std::string digestSource(const EmbeddedFile& asset) {
    return "'sha256-" + base64OfHex(std::string(asset.sha256)) + "'";
}

}  // namespace

// Three bytes, six digits, are four characters. Missing bytes count as zero and are shown as "=".
std::string base64OfHex(const std::string& hex) {
    constexpr std::size_t kDigits = 6;
    constexpr const char* kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t first = 0; first < hex.size(); first += kDigits) {
        const std::string group = hex.substr(first, kDigits);
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < kDigits; ++i)
            bits = bits << 4U | (i < group.size() ? valueOf(group[i]) : 0U);
        const std::size_t characters = group.size() / 2 + 1;
        for (std::size_t i = 0; i < 4; ++i)
            text += i < characters ? kAlphabet[bits >> (18U - 6U * i) & 0x3FU] : '=';
    }
    return text;
}

// Browsers give each file on the disk an origin of its own: 'self' alone matches nothing there, so the scheme is named.
// 'self' serves a folder that somebody puts on a web server. The script loads the index by adding elements, which
// 'strict-dynamic' allows to a script that is known by its digest, and to nobody else.
std::string contentPolicy(PageKind kind) {
    std::string policy = "default-src 'none'; base-uri 'none'; form-action 'none'; style-src " + digestSource(kStyle);
    if (kind == PageKind::conversation) policy += "; img-src 'self' file:; media-src 'self' file:";
    if (kind == PageKind::search) policy += "; script-src " + digestSource(kSearchScript) + " 'strict-dynamic'";
    return policy;
}

}  // namespace app::view
