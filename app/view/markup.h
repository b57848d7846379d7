// HTML that is put together from our own tags and from foreign text. The type keeps both apart: tags can only be
// literals of the source code, and everything else is escaped. There is no way to add a text unescaped.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "app/base/embedded_file.h"

namespace app::view {

class Markup {
public:
    /// Adds a piece of our own HTML as it stands in the source code.
    template <std::size_t Size>
    Markup& tag(const char (&literal)[Size]) {
        html_.append(literal, Size - 1);
        return *this;
    }

    /// Adds text, for an element or for an attribute's value in double quotes: the five characters that mean something
    /// to HTML are escaped. Which characters are shown at all is the matter of shown_text.h.
    Markup& text(std::string_view text);

    /// Adds a number in plain digits.
    Markup& number(long long number);

    /// Adds what was put together before.
    Markup& markup(const Markup& other) {
        html_ += other.html_;
        return *this;
    }

    /// Adds one of our own files as it is.
    Markup& asset(const EmbeddedFile& asset) {
        html_ += asset.bytes;
        return *this;
    }

    [[nodiscard]] const std::string& html() const { return html_; }

private:
    std::string html_;
};

}  // namespace app::view
