#include "tests/app/tree_command_fixture.h"

#include <algorithm>
#include <filesystem>

namespace test {
namespace {

namespace fs = std::filesystem;

std::string fileOf(const std::string& key, const std::string& records) {
    return R"({"version": "1.0", ")" + key + R"(": [)" + records + "]}";
}

std::string messagesOf(const std::string& messages) {
    return fileOf("msgs", R"({"date": {"year": 2021, "month": 5, "day": 9}, "msgs": [)" + messages + "]}");
}

std::vector<fs::path> pathsBelow(const std::string& folder) {
    std::vector<fs::path> paths;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

}  // namespace

TreeCommandTest::TreeCommandTest() {
    for (const auto& [name, text] : {std::pair{"key", kKey}, std::pair{"other-key", "battery staple"}})
        fs::permissions(dir_.write(name, std::string(text) + "\n"), fs::perms::owner_read);
}

Outcome TreeCommandTest::run(const std::string& command, const Arguments& more, const Arguments& last,
                             const Setting& setting) const {
    Arguments first = {command, "--user", kUser};
    if (std::find(last.begin(), last.end(), "--key-file") == last.end())
        first = joined(first, {"--key-file", at("key")});
    return chatTransfer(joined(joined(first, more), last), setting);
}

Arguments TreeCommandTest::importArguments(const std::string& account, const std::string& from) const {
    return {"import-tree", "--user", kUser, "--key-file", at("key"), "--from", at(from), "--account", at(account)};
}

Outcome TreeCommandTest::importTree(const std::string& account, const std::string& from, const Arguments& more,
                                    const Setting& setting) const {
    return run("import-tree", {"--from", at(from), "--account", at(account)}, more, setting);
}

Outcome TreeCommandTest::encryptTree(const std::string& from, const std::string& to, const Arguments& more) const {
    return run("encrypt-tree", {"--from", at(from), "--to", at(to)}, more, {});
}

Outcome TreeCommandTest::decryptTree(const std::string& from, const std::string& to, const Arguments& more) const {
    return run("decrypt-tree", {"--from", at(from), "--to", at(to)}, more, {});
}

std::string TreeCommandTest::plainMessage(long long id, const std::string& more) const {
    return messagesOf(R"({"sendUserID": 2002, "receTargetID": )" + std::string(kUser) + R"(, "sendTime": )" +
                      std::to_string(1000 + id) + R"(, "messageID": )" + std::to_string(id) + ", " + more + "}");
}

void TreeCommandTest::makePlainTree(const std::string& plain) const {
    dir_.write(plain + "/2002/a.mg", plainMessage(1));
    dir_.write(plain + "/2002/old/b.mg",
               plainMessage(2, R"("messageType": 3, "message": "{\"mediaUrl\": \"voice/hello.amr\"}")"));
    dir_.write(plain + "/3003/c.mg", plainMessage(3));
    dir_.write(plain + "/contacts.ct", fileOf("recontact", R"({"targetID": 2002, "name": "Ada", "time": 7})"));
    dir_.write(plain + "/notes.nt", fileOf("note", R"({"targetID": 2002, "type": 1, "content": "milk"},
                                                      {"targetID": 2002, "type": 1, "content": "tea", "rmdTime": 5})"));
    dir_.write(plain + "/rooms.rm", fileOf("room", R"({"name": "Club", "targetID": [1, 2]})"));
    dir_.write(plain + "/imfiles/voice/hello.amr", std::string("\0\1\xff voice", 9));
}

void TreeCommandTest::makeTree(const std::string& backup) const {
    makePlainTree(backup + "-plain");
    ASSERT_EXIT_CODE(0, encryptTree(backup + "-plain", backup));
}

void TreeCommandTest::makeBigPlainTree(const std::string& plain, int files) const {
    for (int i = 0; i < files; ++i) {
        const std::string voice = "v" + std::to_string(i) + ".amr";
        const std::string body = R"("messageType": 3, "message": "{\"mediaUrl\": \")" + voice + R"(\"}")";
        dir_.write(plain + "/" + std::to_string(7000 + i / 50) + "/" + std::to_string(i) + ".mg",
                   plainMessage(i + 1, i % 5 == 0 ? body : R"("message": "text")"));
        if (i % 5 == 0) dir_.write(plain + "/imfiles/" + voice, "voice " + std::to_string(i));
    }
}

void TreeCommandTest::makeContactFiles(const std::string& plain, int files) const {
    for (int i = 0; i < files; ++i) {
        const std::string number = std::to_string(i);
        dir_.write(plain + "/contacts-" + number + ".ct",
                   fileOf("recontact", R"({"targetID": 900)" + number + R"(, "name": "Contact )" + number + R"("})"));
    }
}

std::string TreeCommandTest::mainRows(const std::string& account, const std::string& sql, int columns) const {
    return queryText(mainDatabase(account), sql, columns, kKey);
}

std::string TreeCommandTest::pluginRows(const std::string& account, const std::string& sql, int columns) const {
    return queryText(pluginDatabase(account), sql, columns, kKey);
}

std::string TreeCommandTest::messageIds(const std::string& account, const std::string& table) const {
    return mainRows(account, "select msgID from " + table + " order by msgID");
}

std::string TreeCommandTest::contentOf(const std::string& account) const {
    std::string content = wholeText(mainDatabase(account), kKey) + wholeText(pluginDatabase(account), kKey);
    for (const char* folder : {"/audio", "/image", "/file", "/video"})
        content += filesBelow(account + folder);
    return content;
}

std::string TreeCommandTest::namesBelow(const std::string& folder) const {
    std::string text;
    for (const fs::path& path : pathsBelow(at(folder)))
        text += path.lexically_relative(at(folder)).string() + "\n";
    return text;
}

std::string TreeCommandTest::filesBelow(const std::string& folder) const {
    std::string text;
    for (const fs::path& path : pathsBelow(at(folder)))
        text += path.lexically_relative(at(folder)).string() + ": " + readFile(path.string()) + "\n";
    return text;
}

long long TreeCommandTest::countEnding(const std::string& folder, const std::string& ending) const {
    const std::vector<fs::path> paths = pathsBelow(folder);
    return std::count_if(paths.begin(), paths.end(),
                         [&ending](const fs::path& path) { return path.extension() == ending; });
}

}  // namespace test
