// The kinds of left-out things: the page, the C surface and the code have the same numbers and names. Hosts store them.
#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <string>

#include "tests/docs/markdown.h"
#include "transfer/omission.h"

namespace {

using chattransfer::Omission;
using Kinds = std::map<int, std::string>;

// The enumerators of transfer/omission.h with a value of three digits and more: "    attachmentMissing = 101,".
Kinds kindsInHeader() {
    Kinds kinds;
    for (const std::string& line : docs::linesOf(docs::readSource("transfer/omission.h"))) {
        const std::size_t name = line.find_first_not_of(' ');
        const std::size_t sign = line.find(" = ");
        if (name != 4 || sign == std::string::npos) continue;
        const int number = std::stoi(line.substr(sign + 3));
        if (number > 100) kinds[number] = line.substr(name, sign - name);
    }
    return kinds;
}

std::vector<docs::Row> documentedKinds() {
    return docs::tableUnder(docs::readSource("docs/error-codes.md"), "Kinds of left-out things");
}

// "attachmentMissing" for ATTACHMENT_MISSING.
std::string camelCase(const std::string& macro) {
    std::string name;
    for (std::size_t i = 0; i < macro.size(); ++i) {
        if (macro[i] == '_') continue;
        const bool begins = i > 0 && macro[i - 1] == '_';
        name += begins ? macro[i] : static_cast<char>(std::tolower(macro[i]));
    }
    return name;
}

// Lines such as "#define CHAT_TRANSFER_LEFT_OUT_ATTACHMENT_MISSING INT32_C(101)".
Kinds kindsOfC() {
    const std::string begin = "#define CHAT_TRANSFER_LEFT_OUT_";
    const std::string value = " INT32_C(";
    Kinds kinds;
    for (const std::string& line : docs::linesOf(docs::readSource("c/chat_transfer.h"))) {
        if (line.compare(0, begin.size(), begin) != 0) continue;
        const std::size_t end = line.find(value);
        kinds[std::stoi(line.substr(end + value.size()))] = camelCase(line.substr(begin.size(), end - begin.size()));
    }
    return kinds;
}

}  // namespace

TEST(OmissionKinds, AreAllOnThePageUnderTheirNumbersAndNames) {
    Kinds documented;
    for (const docs::Row& row : documentedKinds())
        documented[std::stoi(row.at(0))] = docs::plain(row.at(1));
    EXPECT_EQ(kindsInHeader(), documented);
}

TEST(OmissionKinds, HaveTheNameOfTheirEnumeratorAsWord) {
    for (const auto& [number, name] : kindsInHeader())
        EXPECT_EQ(name, chattransfer::wordOf(static_cast<Omission>(number)));
}

TEST(OmissionKinds, HaveTheReasonThatThePageGives) {
    for (const docs::Row& row : documentedKinds())
        EXPECT_EQ(row.at(2), chattransfer::sentenceOf(static_cast<Omission>(std::stoi(row.at(0)))));
}

TEST(OmissionKinds, OfTheCSurfaceAreThoseOfTheCode) {
    const Kinds kinds = kindsOfC();
    EXPECT_LE(30U, kinds.size());
    for (const auto& [number, name] : kinds)
        EXPECT_EQ(name, chattransfer::wordOf(static_cast<Omission>(number)));
}
