// docs/error-codes.md names the codes of transfer/error_codes.h, all of them and no others.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "tests/docs/markdown.h"
#include "transfer/error_codes.h"

namespace {

// The enumerators with a hexadecimal value, by their names in the header: lines such as "    kMissing = 0xff000022,".
std::map<std::string, std::string> codesInHeader() {
    const std::string assignment = " = 0x";
    std::map<std::string, std::string> codes;
    for (const std::string& line : docs::linesOf(docs::readSource("transfer/error_codes.h"))) {
        const std::size_t name = line.find_first_not_of(' ');
        const std::size_t value = line.find(assignment);
        if (value != std::string::npos) codes[line.substr(name, value - name)] = line.substr(value + 3, 10);
    }
    return codes;
}

std::vector<docs::Row> documentedCodes() {
    std::vector<docs::Row> rows = docs::tableUnder(docs::readSource("docs/error-codes.md"), "Error codes");
    rows.erase(rows.begin());  // 0, success
    return rows;
}

}  // namespace

TEST(ErrorCodesPage, ListsEveryCodeInHexUnderItsName) {
    std::map<std::string, std::string> documented;
    for (const docs::Row& row : documentedCodes())
        documented[docs::plain(row.at(2))] = row.at(0);
    EXPECT_EQ(7U, documented.size());
    EXPECT_EQ(codesInHeader(), documented);
}

TEST(ErrorCodesPage, GivesTheIntThatAHostSees) {
    for (const docs::Row& row : documentedCodes()) {
        const auto code = static_cast<chattransfer::ErrorCode>(std::stoul(row.at(0), nullptr, 16));
        EXPECT_EQ(std::to_string(chattransfer::asInt(code)), row.at(1)) << row.at(0);
    }
}

TEST(ErrorCodesPage, TellsForEveryCodeWhatItMeansAndWhatToSay) {
    for (const docs::Row& row : documentedCodes()) {
        EXPECT_FALSE(row.at(3).empty()) << row.at(0);
        EXPECT_FALSE(row.at(4).empty()) << row.at(0);
    }
}

TEST(ErrorCodesPage, NamesTheOperationsOfEveryCode) {
    std::string codes;
    const std::string page = docs::readSource("docs/error-codes.md");
    for (const docs::Row& row : docs::tableUnder(page, "Which operations return which code"))
        codes += row.at(1) + " ";
    for (const auto& [name, code] : codesInHeader())
        EXPECT_NE(std::string::npos, codes.find(code)) << name;
}
