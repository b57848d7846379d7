// The JSON Schemas of docs/schemas: real files and the examples of the pages obey them, broken files do not, and they
// have the keys that the code has.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>
#include <vector>

#include "tests/app/program.h"
#include "tests/docs/markdown.h"
#include "tests/support/database.h"
#include "tests/support/temp_dir.h"
#include "transfer/dbTrans.h"
#include "transfer/format/package_format.h"
#include "transfer/format/tree_format.h"
#include "transfer/tables/message_table.h"
#include "transfer/tables/recent_contact_table.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using Adapter = valijson::adapters::NlohmannJsonAdapter;

const std::vector<std::string> kSchemas = {
    "package-messages", "package-recent-contacts", "tree-messages", "tree-recent-contacts", "tree-notes", "tree-rooms",
    "run-report"};

json schemaText(const std::string& name) {
    return json::parse(docs::readSource("docs/schemas/" + name + ".schema.json"));
}

class Validator {
public:
    explicit Validator(const std::string& name) : text_(schemaText(name)) {
        valijson::SchemaParser parser(valijson::SchemaParser::kDraft7);
        parser.populateSchema(Adapter(text_), schema_);
    }

    const json& text() const { return text_; }

    // The first thing that is wrong with the document; empty when nothing is.
    std::string fault(const json& document) const {
        valijson::Validator validator;
        valijson::ValidationResults results;
        if (validator.validate(schema_, Adapter(document), &results)) return "";
        valijson::ValidationResults::Error error;
        std::string text;
        if (!results.popError(error)) return "refused";
        for (const std::string& step : error.context)
            text += step;
        return text + ": " + error.description;
    }

private:
    json text_;
    valijson::Schema schema_;
};

// The schema of a block of the pages.
std::string schemaOfBlock(const std::string& name) {
    static const std::map<std::string, std::string> schemas = {
        {"msg_0.mg", "package-messages"},
        {"msg_0.mg laid out", "package-messages"},
        {"msg_1.mg", "package-messages"},
        {"msg_2.mg", "package-messages"},
        {"recontact.mg", "package-recent-contacts"},
        {"message file", "tree-messages"},
        {"recent-contact file", "tree-recent-contacts"},
        {"note file", "tree-notes"},
        {"room file", "tree-rooms"},
        {"run report", "run-report"},
    };
    const auto found = schemas.find(name);
    return found == schemas.end() ? "" : found->second;
}

// A document that has every key, out of the format pages.
json example(const std::string& schema) {
    const std::map<std::string, std::string> pages = {
        {"package", "docs/formats/package.md"}, {"tree", "docs/formats/tree.md"}, {"run", "docs/run-report.md"}};
    const std::string page = pages.at(schema.substr(0, schema.find('-')));
    for (const docs::Block& block : docs::blocksOf(docs::readSource(page))) {
        if (block.language == "json" && block.name != "msg_0.mg" && schemaOfBlock(block.name) == schema)
            return json::parse(block.text);
    }
    ADD_FAILURE() << "no example of " << schema;
    return {};
}

using Pointer = json::json_pointer;

constexpr double kTwoTo63 = 9223372036854775808.0;

// One object or number of a document, and what the schema says of it.
struct Place {
    Pointer at;
    const json& schema;
};

// Every value of the document that the schema describes.
void collect(const json& document, const json& schema, const Pointer& at, std::vector<Place>& places) {
    places.push_back({at, schema});
    if (schema.at("type") == "object") {
        for (const auto& [key, rules] : schema.at("properties").items()) {
            if (document.contains(key)) collect(document.at(key), rules, at / key, places);
        }
    } else if (schema.at("type") == "array") {
        for (std::size_t i = 0; i < document.size(); ++i)
            collect(document.at(i), schema.at("items"), at / i, places);
    }
}

// A document of the schema, broken in one place after another.
class BrokenDocuments : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        ASSERT_EQ("", validator_.fault(document_));
        collect(document_, validator_.text(), Pointer(), places_);
    }

    std::string faultWith(const Pointer& at, const json& value) const {
        json broken = document_;
        broken[at] = value;
        return validator_.fault(broken);
    }

    std::string faultWithout(const Pointer& object, const std::string& key) const {
        json broken = document_;
        broken[object].erase(key);
        return validator_.fault(broken);
    }

    Validator validator_{GetParam()};
    json document_ = example(GetParam());
    std::vector<Place> places_;
};

TEST_P(BrokenDocuments, LackAKey) {
    int broken = 0;
    for (const Place& place : places_) {
        if (place.schema.at("type") != "object") continue;
        for (const json& key : place.schema.at("required")) {
            EXPECT_NE("", faultWithout(place.at, key)) << place.at << " without " << key;
            ++broken;
        }
    }
    EXPECT_LE(4, broken);
}

TEST_P(BrokenDocuments, HaveAValueOfAnotherType) {
    const std::vector<json> values = {nullptr, true, 7, 7.5, "text", json::array(), json::object()};
    int broken = 0;
    for (const Place& place : places_) {
        for (const json& value : values) {
            const std::string type = place.schema.at("type");
            const bool same = (type == "integer" && value.is_number_integer()) || type == value.type_name();
            if (same) continue;
            EXPECT_NE("", faultWith(place.at, value)) << place.at << " as " << value;
            ++broken;
        }
    }
    EXPECT_LE(20, broken);
}

TEST_P(BrokenDocuments, HaveANumberOutOfRange) {
    int broken = 0;
    for (const Place& place : places_) {
        if (place.schema.at("type") != "integer") continue;
        for (const char* limit : {"minimum", "maximum"}) {
            const double last = place.schema.at(limit);
            const json integer = last == kTwoTo63 ? json(1ULL << 63) : place.schema.at(limit);
            EXPECT_EQ("", faultWith(place.at, integer)) << place.at << " at its " << limit;
            const double beyond = last + (last < 0 ? -1 : 1) * (std::abs(last) > 1e15 ? 4096 : 1);
            EXPECT_NE("", faultWith(place.at, beyond)) << place.at << " beyond its " << limit;
            ++broken;
        }
    }
    EXPECT_LE(2, broken);
}

INSTANTIATE_TEST_SUITE_P(Of, BrokenDocuments, testing::ValuesIn(kSchemas), [](const auto& schema) {
    std::string name = schema.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

void expectDescriptions(const json& schema, const Pointer& at, int& described) {
    EXPECT_TRUE(schema.contains("description") && schema.at("description").get<std::string>().size() > 4) << at;
    ++described;
    if (schema.contains("items")) expectDescriptions(schema.at("items"), at / "items", described);
    if (!schema.contains("properties")) return;
    for (const auto& [key, rules] : schema.at("properties").items())
        expectDescriptions(rules, at / key, described);
}

// "type:minimum", such as "integer:-128"; a text and a list have no minimum.
std::string kindOf(const json& rules) {
    const std::string type = rules.at("type");
    if (type == "array") return "array of " + kindOf(rules.at("items"));
    return type == "integer" ? "integer:" + rules.at("minimum").dump() + ":" + rules.at("maximum").dump() : type;
}

using Kinds = std::map<std::string, std::string>;

Kinds kindsIn(const json& object) {
    Kinds kinds;
    for (const auto& [key, rules] : object.at("properties").items())
        kinds[key] = kindOf(rules);
    return kinds;
}

const std::string kByte = "integer:-128:127";
const std::string kInt = "integer:-2147483648:2147483647";
const std::string kId = "integer:-9223372036854775808:9223372036854775807";
// The writer's numbers pass through a double, and the double nearest to the largest id is 2^63. It stands in the schema
// with a fraction, for validators that keep integers in 64 bits.
const std::string kWrittenId = "integer:-9223372036854775808:9.223372036854776e+18";

struct KindOfField {
    const std::string& id;

    std::string of(const std::string& /*field*/) const { return "string"; }
    std::string of(long long /*field*/) const { return id; }
    std::string of(int /*field*/) const { return kInt; }
    std::string of(signed char /*field*/) const { return kByte; }
};

Kinds messageKeys(const std::string& id) {
    Kinds kinds;
    const KindOfField kind = {id};
    const imsdk::st_dbMessageBean any;
    chattransfer::forEachMessageKey(
        any, [&](const char* key, auto /*use*/, const auto& field) { kinds[key] = kind.of(field); });
    chattransfer::forEachMessageList(any,
                                     [&](const char* key, const auto& /*field*/) { kinds[key] = "array of " + id; });
    return kinds;
}

Kinds contactKeys(const std::string& id) {
    Kinds kinds;
    const KindOfField kind = {id};
    const imsdk::st_dbReContactBean any;
    chattransfer::forEachRecentContactField(
        any, [&](int /*column*/, const char* key, const auto& field) { kinds[key] = kind.of(field); });
    return kinds;
}

const json& messageIn(const json& schema) {
    return schema.at("/properties/msgs/items/properties/msgs/items"_json_pointer);
}

void expectAllRequired(const json& object) {
    EXPECT_EQ(object.at("required").size(), object.at("properties").size());
    EXPECT_EQ(false, object.at("additionalProperties"));
}

// What the program writes.
class RealFiles : public testing::Test {
protected:
    void run(const test::Arguments& arguments) const {
        const test::Outcome outcome = test::chatTransfer(arguments);
        ASSERT_EQ(0, outcome.code) << outcome.all();
    }

    // Validates all files below the folder that are of a kind that has a schema.
    std::map<std::string, int> validateBelow(const std::string& folder, const std::string& kind) {
        std::map<std::string, int> count;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(home_.at(folder))) {
            const std::string schema = schemaOf(entry.path(), kind);
            if (schema.empty() || !entry.is_regular_file()) continue;
            EXPECT_EQ("", Validator(schema).fault(json::parse(test::readFile(entry.path().string())))) << entry.path();
            ++count[schema];
        }
        return count;
    }

    static std::string schemaOf(const fs::path& file, const std::string& kind) {
        static const std::map<std::string, std::string> schemas = {
            {chattransfer::kMessageExtension, "-messages"},
            {chattransfer::kContactExtension, "-recent-contacts"},
            {chattransfer::kNoteExtension, "-notes"},
            {chattransfer::kRoomExtension, "-rooms"}};
        if (file.filename() == chattransfer::kRecentContactFileName) return kind + "-recent-contacts";
        const auto found = schemas.find(file.extension().string());
        return found == schemas.end() ? "" : kind + found->second;
    }

    test::TempDir home_;
};

// The report of each command, done and failed.
class RealReports : public RealFiles {
protected:
    // Runs the command with a report and validates it; gives it back.
    json reportOf(test::Arguments arguments, int exitCode) const {
        arguments.insert(arguments.end(), {"--report", home_.at("report.json")});
        const test::Outcome outcome = test::chatTransfer(arguments);
        EXPECT_EQ(exitCode, outcome.code) << outcome.all();
        json report = json::parse(test::readFile(home_.at("report.json")));
        EXPECT_EQ("", Validator("run-report").fault(report)) << report.dump(2);
        EXPECT_EQ(arguments.front(), report.at("command"));
        EXPECT_EQ(exitCode, report.at("exitCode"));
        return report;
    }
    // `more`: options and names of files, in turn; an argument without an option has an empty one.
    test::Arguments with(const std::string& command, const test::Arguments& more) const {
        test::Arguments arguments = {command, "--user", "1001"};
        for (std::size_t i = 0; i + 1 < more.size(); i += 2) {
            if (!more[i].empty()) arguments.push_back(more[i]);
            arguments.push_back(home_.at(more[i + 1]));
        }
        return arguments;
    }
};

TEST_F(RealReports, OfTheCommandsForPackagesObeyTheSchema) {
    reportOf(with("sample", {"--account", "account"}), 0);
    reportOf(with("export", {"--account", "account", "--to", "backup"}), 0);
    reportOf(with("export", {"--account", "account", "--to", "backup"}), 1);
    reportOf(with("import", {"--account", "copy", "--from", "backup"}), 0);
    reportOf(with("inspect", {"", "backup"}), 0);
    reportOf(with("view", {"--from", "backup", "--to", "pages"}), 0);
    const json verified = reportOf(with("verify", {"--account", "copy", "--from", "backup"}), 0);
    EXPECT_FALSE(verified.at("changedByRule").empty());
    fs::remove_all(home_.at("copy/image"));
    const json differs = reportOf(with("verify", {"--account", "copy", "--from", "backup"}), 1);
    EXPECT_EQ("attachmentNotInAccount", differs.at("/findings/0/kind"_json_pointer));
}

TEST_F(RealReports, OfTheCommandsForTreesObeyTheSchema) {
    std::ofstream(home_.at("key")) << "battery staple\n";
    fs::permissions(home_.at("key"), fs::perms::owner_read | fs::perms::owner_write);
    reportOf(with("sample-tree", {"--to", "plain"}), 0);
    reportOf(with("encrypt-tree", {"--from", "plain", "--to", "backup", "--key-file", "key"}), 0);
    reportOf(with("inspect", {"", "backup", "--key-file", "key"}), 0);
    reportOf(with("decrypt-tree", {"--from", "backup", "--to", "plain2", "--key-file", "key"}), 0);
    test::Arguments dryRun = with("import-tree", {"--from", "backup", "--account", "new", "--key-file", "key"});
    dryRun.emplace_back("--dry-run");
    EXPECT_EQ(true, reportOf(dryRun, 0).at("dryRun"));
    const json imported =
        reportOf(with("import-tree", {"--from", "backup", "--account", "new", "--key-file", "key"}), 0);
    EXPECT_FALSE(imported.at("phases").empty());
    reportOf(with("verify", {"--from", "plain", "--account", "new", "--key-file", "key"}), 0);
}

TEST_F(RealReports, OfWhatWasLeftOutHaveAKindOfTheSchema) {
    reportOf(with("sample", {"--account", "account"}), 0);
    fs::remove_all(home_.at("account/image"));
    json report = reportOf(with("export", {"--account", "account", "--to", "backup"}), 0);
    json& kind = report.at("/leftOut/named/0/kind"_json_pointer);
    EXPECT_EQ("attachmentMissing", kind);
    kind = "the attachment is missing";
    EXPECT_NE("", Validator("run-report").fault(report));
    report.at("/leftOut/named/0"_json_pointer).erase("kind");
    EXPECT_NE("", Validator("run-report").fault(report));
}

TEST_F(RealReports, OfAFailureHaveItsWords) {
    const json report = reportOf(with("import", {"--account", "copy", "--from", "nowhere"}), 1);
    EXPECT_EQ("failed", report.at("outcome"));
    EXPECT_NE("", report.at("/failure/what"_json_pointer));
}

TEST_F(RealFiles, OfAnExportObeyTheSchemas) {
    run({"sample", "--account", home_.at("account"), "--user", "1001", "--messages", "2000"});
    run({"export", "--account", home_.at("account"), "--user", "1001", "--to", home_.at("backup")});
    const std::map<std::string, int> expected = {{"package-messages", 60}, {"package-recent-contacts", 1}};
    EXPECT_EQ(expected, validateBelow("backup", "package"));
}

TEST_F(RealFiles, OfAnExportWithTheLargestAndSmallestNumbersObeyTheSchemas) {
    const std::string main = home_.at("account/db/imsg.db");
    std::string create = chattransfer::kCreateMessageTable;
    create.replace(create.find("%s"), 2, "im_msg_1");
    std::vector<std::string> statements = {create, chattransfer::kCreateRecentContactTable};
    for (const char* number : {"-9223372036854775808", "9223372036854775807", "NULL"}) {
        std::string row = "insert into im_msg_1 values(";
        std::string contact = "insert into im_reContact values(";
        for (int column = 0; column < 23; ++column)
            row += (column == 0 ? "" : ",") + std::string(number);
        for (int column = 0; column < 13; ++column)
            contact += (column == 0 ? "" : ",") + std::string(number);
        statements.push_back(row + ")");
        statements.push_back(contact + ")");
    }
    statements.emplace_back("update im_msg_1 set year_ = 2024");
    test::runSql(main, statements);
    test::runSql(home_.at("account/db/backimsg.db"), {});
    dbTrans exporter;
    exporter.rootPath = home_.at("account");
    exporter.backupPath = home_.at("backup");
    exporter.packageSubDir = "1";
    exporter.packageVersion = "1.0";
    ASSERT_EQ(chattransfer::kSuccess, exporter.rdMsgFromDB(0, 0, 0));
    ASSERT_EQ(chattransfer::kSuccess, exporter.wtMsgToFile());
    EXPECT_EQ(3, exporter.report.messagesWritten);
    EXPECT_EQ(3, exporter.report.contactsWritten);
    EXPECT_EQ(1, validateBelow("backup", "package").at("package-recent-contacts"));
}

TEST_F(RealFiles, OfATreeObeyTheSchemasAfterEncryptionAndDecryption) {
    home_.write("key", "the key of the tree\n");
    fs::permissions(home_.at("key"), fs::perms::owner_read);
    run({"sample-tree", "--to", home_.at("plain"), "--user", "1001", "--messages", "500", "--conversations", "4"});
    run({"encrypt-tree", "--from", home_.at("plain"), "--to", home_.at("trees"), "--user", "1001", "--key-file",
         home_.at("key")});
    run({"decrypt-tree", "--from", home_.at("trees"), "--to", home_.at("readable"), "--user", "1001", "--key-file",
         home_.at("key")});
    const std::map<std::string, int> count = validateBelow("readable", "tree");
    EXPECT_LE(4, count.at("tree-messages"));
    EXPECT_EQ(1, count.at("tree-recent-contacts"));
    EXPECT_EQ(1, count.at("tree-notes"));
    EXPECT_EQ(1, count.at("tree-rooms"));
}

}  // namespace

TEST(Schemas, AreObeyedByEveryExampleOfThePages) {
    std::set<std::string> seen;
    for (const std::string& page : docs::allPages()) {
        for (const docs::Block& block : docs::blocksOf(docs::readSource(page))) {
            if (block.language != "json") continue;
            const std::string schema = schemaOfBlock(block.name);
            ASSERT_NE("", schema) << page << ":" << block.line << ": no schema for " << block.name;
            EXPECT_EQ("", Validator(schema).fault(json::parse(block.text))) << page << ":" << block.line;
            seen.insert(schema);
        }
    }
    EXPECT_EQ(std::set<std::string>(kSchemas.begin(), kSchemas.end()), seen);
}

TEST(Schemas, AreAllNamedHere) {
    std::set<std::string> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(CHAT_TRANSFER_SOURCE_DIR "/docs/schemas")) {
        if (entry.path().extension() == ".json") files.insert(entry.path().stem().stem().string());
    }
    EXPECT_EQ(std::set<std::string>(kSchemas.begin(), kSchemas.end()), files);
}

TEST(Schemas, DescribeEveryValue) {
    for (const std::string& name : kSchemas) {
        SCOPED_TRACE(name);
        int described = 0;
        expectDescriptions(schemaText(name), Pointer(), described);
        EXPECT_LT(6, described);
    }
}

TEST(Schemas, OfMessagesHaveTheKeysAndRangesOfTheCode) {
    EXPECT_EQ(messageKeys(kWrittenId), kindsIn(messageIn(schemaText("package-messages"))));
    EXPECT_EQ(messageKeys(kId), kindsIn(messageIn(schemaText("tree-messages"))));
}

TEST(Schemas, OfRecentContactsHaveTheKeysAndRangesOfTheCode) {
    const Pointer contact("/properties/recontact/items");
    EXPECT_EQ(contactKeys(kWrittenId), kindsIn(schemaText("package-recent-contacts").at(contact)));
    EXPECT_EQ(contactKeys(kId), kindsIn(schemaText("tree-recent-contacts").at(contact)));
}

TEST(Schemas, OfNotesHaveTheKeysAndRangesOfTheCode) {
    Kinds kinds;
    const KindOfField kind = {kId};
    const st_noteTrans any;
    chattransfer::forEachNoteKey(any, [&](const char* key, const auto& field) { kinds[key] = kind.of(field); });
    EXPECT_EQ(kinds, kindsIn(schemaText("tree-notes").at("/properties/note/items"_json_pointer)));
}

TEST(Schemas, OfPackagesRequireEveryKeyAndAllowNoOther) {
    const json messages = schemaText("package-messages");
    expectAllRequired(messages);
    expectAllRequired(messages.at("/properties/msgs/items"_json_pointer));
    expectAllRequired(messages.at("/properties/msgs/items/properties/date"_json_pointer));
    expectAllRequired(messageIn(messages));
    const json contacts = schemaText("package-recent-contacts");
    expectAllRequired(contacts);
    expectAllRequired(contacts.at("/properties/recontact/items"_json_pointer));
}
