#include <filesystem>
#include <fstream>

#include "bench/driver/comparison.h"
#include "bench/driver/stages.h"
#include "bench/names.h"
#include "bench/sqlite_handles.h"

namespace fs = std::filesystem;

namespace bench {
namespace {

std::string databaseOf(const std::string& account) {
    return account + "/db/imsg.db";
}

std::vector<std::string> messageTables(const std::string& account) {
    std::vector<std::string> names;
    const Database db = openDatabase(databaseOf(account));
    const Statement list =
        prepare(db.get(), R"(select name from sqlite_master where type='table' and name like 'im\_msg\_%' escape '\')");
    while (step(list.get()))
        names.emplace_back(textOf(list.get(), 0));
    return names;
}

// A dump of every table by the engine's own shell.
Command shellDump(const Workshop& workshop, const std::string& account) {
    const std::string script = workshop.at("dump.sql");
    std::ofstream file(script);
    file << "select * from im_reContact;\n";
    for (const std::string& table : messageTables(account))
        file << "select * from " << table << ";\n";
    return {{workshop.programs().shell, "-json", databaseOf(account)}, script, workshop.at("dump.json")};
}

Command vacuum(const Workshop& workshop, const std::string& account) {
    const std::string target = workshop.at("vacuumed.db");
    fs::remove(target);
    return {{workshop.programs().shell, databaseOf(account), "vacuum into '" + target + "'"}, "", ""};
}

Command copy(const std::string& from, const std::string& to) {
    fs::remove_all(to);
    return {{"cp", "-r", from, to}, "", ""};
}

Command peer(const Workshop& workshop, const std::string& operation, const std::string& account,
             const std::string& folder) {
    return {{workshop.programs().python, workshop.programs().peerScript, operation, account, folder}, "", ""};
}

std::string exportCommandOutput(const std::string& name) {
    return "out-" + name;
}

class ExportRace {
public:
    ExportRace(Workshop& workshop, std::string account) : workshop_(workshop), account_(std::move(account)) {}

    void addFloorAndProject() {
        add("floor", [this](const std::string& to) { return floor("days", to); });
        add("project", [this](const std::string& to) { return project("export", to); });
        add("floor2", [this](const std::string& to) { return floor("packed", to); });
        add("project2", [this](const std::string& to) { return project("export2", to); });
    }

    void addPeers() {
        if (!workshop_.programs().shell.empty()) {
            contenders_.push_back({"shell", [this] { return shellDump(workshop_, account_); }});
            contenders_.push_back({"vacuum", [this] { return vacuum(workshop_, account_); }});
        }
        contenders_.push_back({"copy", [this] { return copy(databaseOf(account_), workshop_.at("copied.db")); }});
        hasPython_ = !workshop_.programs().python.empty();
        if (hasPython_)
            add("python", [this](const std::string& to) { return peer(workshop_, "export", account_, to); });
    }

    void run(const std::string& prefix, int rounds) {
        race(prefix, contenders_, rounds, workshop_.results(), [this] { check(); });
    }

private:
    template <class Make>
    void add(const std::string& name, Make make) {
        contenders_.push_back(
            {name, [this, name, make] { return make(workshop_.freshFolder(exportCommandOutput(name))); }});
    }

    Command floor(const std::string& layout, const std::string& to) const {
        return workshop_.own("floor-export", {layout, account_, to});
    }
    Command project(const std::string& operation, const std::string& to) const {
        return workshop_.own("transfer-bench", {operation, account_, to});
    }

    std::string output(const std::string& name) const { return workshop_.at(exportCommandOutput(name)); }

    void check() const {
        requireSameFiles(output("floor"), output("project"));
        requireSameFiles(output("floor2"), output("project2"));
        if (hasPython_) requireSameFiles(output("floor"), output("python"));
    }

    Workshop& workshop_;
    std::string account_;
    std::vector<Contender> contenders_;
    bool hasPython_ = false;
};

// One staged table for all messages, then one insert per conversation.
void writeShellImport(const std::string& script, const std::string& package, const std::string& account) {
    std::ofstream file(script);
    file << "create temp table staged(target, toUser, fromUser, body, type, id, last, time, properties, year, mon, day,"
            " format, active, related, source);\n";
    const std::string folder = package + kMessageFolder;
    for (int number = 0; fs::exists(folder + "msg_" + std::to_string(number) + ".mg"); ++number) {
        file << "with day(text, year, mon, day) as materialized (select text, text->>'$.msgs[0].date.year',"
                " text->>'$.msgs[0].date.month', text->>'$.msgs[0].date.day' from (select readfile('"
             << folder << "msg_" << number
             << ".mg') as text)) insert into staged select m.value->>'senderSessionID', m.value->>'receTargetID',"
                " m.value->>'sendUserID', m.value->>'message', m.value->>'messageType', m.value->>'messageID',"
                " m.value->>'lastMessageID', m.value->>'sendTime', m.value->>'msgProperties', year, mon, day,"
                " m.value->>'format', m.value->>'activeType', m.value->>'relatedMsgID', m.value->>'sourceID'"
                " from day, json_each(day.text, '$.msgs[0].msgs') m;\n";
    }
    file << "create index staged_target on staged(target);\n";
    for (const std::string& table : messageTables(account)) {
        file << "begin immediate;\ncreate table " << table
             << "(toUserID BIGINT, fromeUserID BIGINT, body VARCHAR(8000), msgType INTEGER, msgID BIGINT PRIMARY KEY,"
                " lastMsgID BIGINT, time_ BIGINT, burnAfterReading INTEGER, status INTEGER, targetID BIGINT,"
                " msgProperties VARCHAR(1024), year_ INTEGER, mon INTEGER, day_ INTEGER, limitRange VARCHAR(256),"
                " formate VARCHAR(256), activeType INTEGER, relatedMsgID BIGINT, localID BIGINT,"
                " relatedUsers VARCHAR(4096), sourceID VARCHAR(32), unReadState VARCHAR(128), securityLevel INTEGER);\n"
             << "insert or ignore into " << table
             << " select toUser, fromUser, body, type, id, last, time, 0, 4, target, properties, year, mon, day, '',"
                " format, active, related, 0, '', source, null, null from staged where target = "
             << table.substr(7) << " order by rowid;\ncommit;\n";
    }
    file << "create table im_reContact(targetID BIGINT PRIMARY KEY, lastMsgid BIGINT, time BIGINT, type TINYINT,"
            " top TINYINT, wherefrom VARCHAR(256), msgType TINYINT, activeType INTEGER, lastMsg VARCHAR(8000),"
            " msgProp VARCHAR(1024), name VARCHAR(128), sendUserID BIGINT, securityLevel INTEGER);\n"
            "insert or ignore into im_reContact select value->>'targetID', value->>'lastMsgid', value->>'time',"
            " value->>'type', value->>'top', value->>'wherefrom', value->>'msgType', value->>'activeType',"
            " value->>'lastMsg', value->>'msgProp', value->>'name', null, value->>'securityLevel'"
            " from json_each(readfile('"
         << folder << "recontact.mg'), '$.recontact');\n";
}

class ImportRace {
public:
    ImportRace(Workshop& workshop, std::string account, std::string package)
        : workshop_(workshop), account_(std::move(account)), package_(std::move(package)) {}

    void addFloorAndProject() {
        add("floor", [this](const std::string& into) { return floor(into); });
        add("project", [this](const std::string& into) { return project(into); });
        workshop_.run(floor(workshop_.freshAccount("imported")));
        contenders_.push_back({"again", [this] { return project(importedCopy()); }});
    }

    void addPeers() {
        hasShell_ = !workshop_.programs().shell.empty();
        hasPython_ = !workshop_.programs().python.empty();
        if (hasShell_) {
            writeShellImport(workshop_.at("import.sql"), package_, account_);
            add("shell", [this](const std::string& into) -> Command {
                return {{workshop_.programs().shell, databaseOf(into)}, workshop_.at("import.sql"), ""};
            });
        }
        if (hasPython_)
            add("python", [this](const std::string& into) { return peer(workshop_, "import", into, package_); });
    }

    void run(const std::string& prefix, int rounds) {
        race(prefix, contenders_, rounds, workshop_.results(), [this] { check(); });
    }

private:
    template <class Make>
    void add(const std::string& name, Make make) {
        contenders_.push_back({name, [this, name, make] { return make(workshop_.freshAccount("into-" + name)); }});
    }

    Command floor(const std::string& into) const { return workshop_.own("floor-import", {package_, into}); }
    Command project(const std::string& into) const {
        return workshop_.own("transfer-bench", {"import", into, package_});
    }

    std::string importedCopy() const {
        std::string into = workshop_.freshFolder("into-again");
        fs::copy(workshop_.at("imported"), into, fs::copy_options::recursive);
        return into;
    }

    std::string database(const std::string& name) const { return databaseOf(workshop_.at("into-" + name)); }

    void check() const {
        requireSameRows(database("floor"), database("project"));
        requireSameRows(database("floor"), database("again"));
        if (hasShell_) requireSameRows(database("floor"), database("shell"), Schema::ignored);
        if (hasPython_) requireSameRows(database("floor"), database("python"), Schema::ignored);
    }

    Workshop& workshop_;
    std::string account_;
    std::string package_;
    std::vector<Contender> contenders_;
    bool hasShell_ = false;
    bool hasPython_ = false;
};

void raceSize(Workshop& workshop, int messages, bool withPeers) {
    const std::string size = std::to_string(messages);
    const int rounds = workshop.settings().roundsFor(messages);
    const std::string account = workshop.account("account-" + size, sizedAccount(messages));
    ExportRace exports(workshop, account);
    exports.addFloorAndProject();
    if (withPeers) exports.addPeers();
    exports.run("export " + size, rounds);
    ImportRace imports(workshop, account, workshop.at(exportCommandOutput("floor")));
    imports.addFloorAndProject();
    if (withPeers) imports.addPeers();
    imports.run("import " + size, rounds);
    workshop.clear();
}

}  // namespace

void raceSizes(Workshop& workshop) {
    const std::vector<int>& sizes = workshop.settings().sizes;
    for (std::size_t i = 0; i < sizes.size(); ++i)
        raceSize(workshop, sizes[i], i + 2 >= sizes.size());
}

}  // namespace bench
