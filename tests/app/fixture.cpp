#include "tests/app/fixture.h"

#include <filesystem>
#include <sstream>

#include "transfer/tables/recent_contact_table.h"

namespace test {

Outcome CommandTest::run(const Arguments& first, const Arguments& more, const Setting& setting) const {
    return chatTransfer(joined(first, more), setting);
}

Outcome CommandTest::sample(const std::string& account, const Arguments& more, const Setting& setting) const {
    return run({"sample", "--account", at(account), "--user", kUser}, more, setting);
}

Outcome CommandTest::exportFrom(const std::string& account, const std::string& to, const Arguments& more,
                                const Setting& setting) const {
    return run({"export", "--account", at(account), "--user", kUser, "--to", at(to)}, more, setting);
}

Outcome CommandTest::importInto(const std::string& account, const std::string& from, const Arguments& more,
                                const Setting& setting) const {
    return run({"import", "--from", at(from), "--account", at(account), "--user", kUser}, more, setting);
}

Outcome CommandTest::exportOnTerminal(const std::vector<Answer>& answers) const {
    return chatTransferOnTerminal({"export", "--account", at("account"), "--user", kUser, "--to", at("package")},
                                  answers);
}

Outcome CommandTest::inspect(const std::string& from, const Arguments& more) const {
    return run({"inspect", at(from), "--user", kUser}, more, {});
}

Outcome CommandTest::verify(const std::string& from, const std::string& account, const Arguments& more) const {
    return run({"verify", "--from", at(from), "--account", at(account), "--user", kUser}, more, {});
}

void CommandTest::makeSample(const std::string& account) const {
    ASSERT_EXIT_CODE(0, sample(account, {"--conversations", "4", "--messages", "300", "--days", "5"}));
}

void CommandTest::makePackage(const std::string& account, const std::string& package) const {
    makeSample(account);
    ASSERT_EXIT_CODE(0, exportFrom(account, package));
}

void CommandTest::makeAccount(const std::string& account, const std::vector<std::string>& statements) const {
    for (const char* folder : {"/db", "/audio", "/image", "/file"})
        std::filesystem::create_directories(at(account) + folder);
    std::vector<std::string> all = {chattransfer::kCreateRecentContactTable};
    all.insert(all.end(), statements.begin(), statements.end());
    runSql(mainDatabase(account), all);
    runSql(at(account + "/db/backimsg.db"), {});
}

std::string CommandTest::createTable(const std::string& name) {
    return createMessageTable(name);
}

std::string CommandTest::insertMessage(const std::string& table, long long id, const std::string& body) {
    const std::string conversation = table.substr(table.rfind('_') + 1);
    return "insert into " + table +
           "(toUserID, fromeUserID, body, msgType, msgID, time_, status, targetID, year_, mon, " +
           "day_) values(1, 2, " + body + ", 1, " + std::to_string(id) + ", 5, 4, " + conversation + ", 2024, 3, 7)";
}

std::vector<std::string> CommandTest::tablesOf(const std::string& account) const {
    std::istringstream names(
        queryText(mainDatabase(account),
                  R"(select name from sqlite_master where name like 'im\_msg\_%' escape '\' order by name)", 1));
    std::vector<std::string> tables;
    for (std::string name; std::getline(names, name);)
        tables.push_back(name);
    return tables;
}

std::string CommandTest::biggestTable(const std::string& account) const {
    std::string biggest;
    long long most = -1;
    for (const std::string& table : tablesOf(account)) {
        const long long rows = std::stoll(queryText(mainDatabase(account), "select count(*) from " + table, 1));
        if (rows > most) biggest = table;
        most = std::max(most, rows);
    }
    return biggest;
}

namespace {

void expectEnd(int code, const Outcome& run, const std::string& output, const std::vector<std::string>& says,
               const char* file, int line) {
    const ::testing::ScopedTrace place(file, line, "the command");
    EXPECT_EXIT_CODE(code, run);
    for (const std::string& text : says)
        EXPECT_SAYS(text, output);
}

}  // namespace

Outcome expectSuccess(Outcome run, const std::vector<std::string>& says, const char* file, int line) {
    expectEnd(0, run, run.out, says, file, line);
    return run;
}

Outcome expectFailure(Outcome run, const std::vector<std::string>& says, const char* file, int line) {
    expectEnd(1, run, run.err, says, file, line);
    return run;
}

Outcome expectUsageError(Outcome run, const std::vector<std::string>& says, const char* file, int line) {
    expectEnd(2, run, run.err, says, file, line);
    return run;
}

Outcome expectFindings(Outcome run, const std::vector<std::string>& says, const char* file, int line) {
    expectEnd(1, run, run.out, says, file, line);
    return run;
}

void expectRows(const Outcome& run, const std::vector<std::pair<std::string, std::string>>& rows, const char* file,
                int line) {
    const ::testing::ScopedTrace place(file, line, "the table");
    for (const auto& [label, value] : rows)
        EXPECT_EQ(value, rowOf(run.out, label)) << label;
}

bool hasControlCharacter(const std::string& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte < 0x20 && byte != '\n') || byte == 0x7F) return true;
        // U+0080 to U+009F
        if (byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0) return true;
    }
    return false;
}

std::string rowOf(const std::string& output, const std::string& label) {
    const std::string begin = "\n  " + label + "  ";
    const std::size_t found = output.find(begin);
    if (found == std::string::npos) return "";
    const std::size_t value = output.find_first_not_of(' ', found + begin.size());
    return output.substr(value, output.find('\n', value) - value);
}

}  // namespace test
