#include "app/view/markup.h"

namespace app::view {
namespace {

// What stands for a character that HTML would obey; empty for all others.
std::string_view entityOf(char c) {
    switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\'':
            return "&#39;";
        default:
            return "";
    }
}

}  // namespace

Markup& Markup::text(std::string_view text) {
    std::size_t copied = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string_view entity = entityOf(text[i]);
        if (entity.empty()) continue;
        html_.append(text.substr(copied, i - copied)).append(entity);
        copied = i + 1;
    }
    html_.append(text.substr(copied));
    return *this;
}

Markup& Markup::number(long long number) {
    html_ += std::to_string(number);
    return *this;
}

}  // namespace app::view
