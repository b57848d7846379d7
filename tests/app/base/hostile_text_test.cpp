// Texts that would command the terminal of whoever looks at them, in every field of a database, a package and a tree.
#include "tests/app/tree_command_fixture.h"

namespace test {
namespace {

// Clears the screen, sets the title, rings, reverses the reading direction; a C1 control, a carriage return, a NUL.
constexpr const char* kSql = "char(27) || '[2J' || char(27) || ']0;owned' || char(7, 155, 13, 8, 8238) || 'x'";
constexpr const char* kJson = R"("\u001b[2J\u001b]0;owned\u0007\u009b\r\b\u202e\u0000x")";

class HostileText : public TreeCommandTest {
protected:
    void expectHarmless(const Outcome& run) const {
        EXPECT_FALSE(hasControlCharacter(run.out + run.err)) << run.all();
        // NOLINTNEXTLINE(misc-misleading-bidirectional): the very text that must not come through
        EXPECT_EQ(std::string::npos, run.all().find("\u202e")) << "the reading direction was reversed";
    }
};

TEST_F(HostileText, OfADatabaseCommandsNoTerminal) {
    const std::string text = kSql;
    makeAccount("account",
                {createTable("im_msg_5"),
                 "insert into im_msg_5(msgID, year_, mon, day_, msgType, body, msgProperties, limitRange, formate, "
                 "relatedUsers, sourceID) values(1, 2024, 3, 7, 6, '{\"mediaUrl\":\"' || replace(" +
                     text + R"(, char(27), '\u001b') || '","fileName":"\u001b[2J"}', )" + text + ", " + text + ", " +
                     text + ", " + text + ", " + text + ")",
                 "insert into im_reContact(targetID, name, lastMsg, msgProp, wherefrom) values(5, " + text + ", " +
                     text + ", " + text + ", " + text + ")",
                 "create table \"im_msg_\x1b[2J\"(x)"});
    expectHarmless(exportFrom("account", "package", {"--package-version", "1\x1b[31m\x07"}));
    for (const char* format : {"", "--json"}) {
        const Arguments more = *format == '\0' ? Arguments{} : Arguments{format};
        expectHarmless(inspect("package", more));
    }
    expectHarmless(importInto("other", "package", {"--package-version", "1\x1b[31m\x07"}));
    expectHarmless(verify("package", "other", {"--package-version", "1\x1b[31m\x07"}));
    expectHarmless(verify("package", "account"));
}

TEST_F(HostileText, OfATreeCommandsNoTerminal) {
    const std::string text = kJson;
    const auto file = [](const std::string& key, const std::string& record) {
        return R"({"version": "1.0", ")" + key + R"(": [)" + record + "]}";
    };
    dir_.write("plain/2002/\x1b[2Ja.mg",
               plainMessage(1, R"("messageType": 6, "format": )" + text + R"(, "sourceID": )" + text +
                                   R"(, "message": "{\"mediaUrl\": \"\\u001b[2J\\u0007.x\"}")"));
    dir_.write("plain/2002/b.mg", plainMessage(2, R"("message": )" + text));
    dir_.write("plain/2002/\x1b]0;c\x07.mg", R"({"version": )" + text + R"(, "msgs": []})");
    dir_.write("plain/c.ct",
               file("recontact", R"({"targetID": 2002, "name": )" + text + R"(, "lastMsg": )" + text + "}"));
    dir_.write("plain/n.nt", file("note", R"({"targetID": 2002, "type": 3, "content": )" + text + "}"));
    dir_.write("plain/r.rm", file("room", R"({"name": )" + text + R"(, "targetID": [1]})"));
    expectHarmless(inspect("plain"));
    expectHarmless(inspect("plain", {"--json"}));
    expectHarmless(encryptTree("plain", "backup"));
    expectHarmless(inspect("backup", {"--key-file", at("key")}));
    expectHarmless(importTree("account", "backup"));
    expectHarmless(decryptTree("backup", "readable"));
    expectHarmless(verify("backup", "account", {"--key-file", at("key")}));
}

}  // namespace
}  // namespace test
