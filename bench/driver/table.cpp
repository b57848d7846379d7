#include "bench/driver/table.h"

#include <cmath>

#include "host/base/fixed_text.h"

namespace bench {
namespace {

std::string format(const char* pattern, double value) {
    return tools::FixedText<64>(pattern, value).text();
}

// 100000 as "100k".
std::string sizeName(int messages) {
    if (messages % 1000000 == 0) return std::to_string(messages / 1000000) + "M";
    return messages % 1000 == 0 ? std::to_string(messages / 1000) + "k" : std::to_string(messages);
}

class TableMaker {
public:
    TableMaker(const Settings& settings, const Results& results) : settings_(settings), results_(results) {}

    // CPU of one over CPU of the other.
    void ratio(const std::string& work, const char* naive, double reach, const std::string& over,
               const std::string& under) {
        if (!has(over) || !has(under)) return;
        const double above = costs(over).cpu();
        const double below = costs(under).cpu();
        add(work, naive, reach, shortNumber(above / below), above / below, duration(above) + " / " + duration(below));
        rows.back().fastest = shortNumber(costs(over).fastest() / costs(under).fastest());
    }

    // The power of the size with which CPU grows.
    void exponent(const std::string& work, const char* naive, double reach, const std::string& prefix,
                  const std::string& suffix, int smaller, int larger) {
        const std::string low = prefix + std::to_string(smaller) + suffix;
        const std::string high = prefix + std::to_string(larger) + suffix;
        if (smaller == larger || !has(low) || !has(high)) return;
        const double figure = std::log(costs(high).cpu() / costs(low).cpu()) / std::log(double(larger) / smaller);
        add(work + ", " + sizeName(smaller) + " to " + sizeName(larger), naive, reach, format("%.2f", figure), figure,
            duration(costs(low).cpu()) + " to " + duration(costs(high).cpu()));
    }

    void memory(const std::string& work, const char* naive, double reach, const std::string& prefix) {
        const std::string low = prefix + std::to_string(smaller()) + " project";
        const std::string high = prefix + std::to_string(larger()) + " project";
        if (smaller() == larger() || !has(low) || !has(high)) return;
        constexpr double kMebibyte = 1048576;
        const double figure = (costs(high).memory() - costs(low).memory()) / (larger() - smaller());
        add(work + ", " + sizeName(smaller()) + " to " + sizeName(larger()), naive, reach, format("%.0f B", figure),
            figure,
            format("%.1f MiB", costs(low).memory() / kMebibyte) + " to " +
                format("%.1f MiB", costs(high).memory() / kMebibyte));
    }

    // How many times opening an encrypted database costs what a plain one does not, within one operation.
    void derivations(const std::string& work, const std::string& operation, double reach) {
        const std::string keyed = "keyed-small " + operation + "-keyed";
        if (!has(keyed)) return;
        const double extra = costs(keyed).cpu() - costs("keyed-small " + operation).cpu();
        const double one = costs("keyed-small open-keyed").cpu() - costs("keyed-small open").cpu();
        add(work, "", reach, shortNumber(extra / one), std::round(extra / one),
            duration(extra) + " / " + duration(one));
    }

    void add(const std::string& work, const char* naive, double reach, const std::string& here, double figure,
             const std::string& sides) {
        const std::string limit = reach > 0 ? "at most " + shortNumber(reach) : "";
        rows.push_back({work, naive, limit, here, sides, reach <= 0 || figure <= reach});
    }

    int smaller() const {
        const std::vector<int>& sizes = settings_.sizes;
        return sizes.size() >= 2 ? sizes[sizes.size() - 2] : larger();
    }
    int larger() const { return settings_.sizes.back(); }

    std::vector<Row> rows;

private:
    bool has(const std::string& name) const { return results_.count(name) != 0; }
    const Costs& costs(const std::string& name) const { return results_.at(name); }

    const Settings& settings_;
    const Results& results_;
};

constexpr int kLargeAccount = 1000000;

// The straightforward design was measured at two sizes only.
const char* naiveAt(int messages, const char* smaller, const char* larger) {
    constexpr int kSmallAccount = 100000;
    return messages == kLargeAccount ? larger : messages == kSmallAccount ? smaller : "";
}

void addSize(TableMaker& table, int messages) {
    const std::string size = sizeName(messages);
    const std::string exported = "export " + std::to_string(messages) + " ";
    const std::string imported = "import " + std::to_string(messages) + " ";
    const double exportReach = messages >= kLargeAccount ? 2.1 : 1.5;
    table.ratio("export / floor, " + size, naiveAt(messages, "8.1", "12.4"), exportReach, exported + "project",
                exported + "floor");
    table.ratio("export / `sqlite3 -json` dump, " + size, naiveAt(messages, "4.4", "4.8"), 0.85, exported + "project",
                exported + "shell");
    table.ratio("export in files of 1000 / floor, " + size, naiveAt(messages, "8", "12"), exportReach,
                exported + "project2", exported + "floor2");
    table.ratio("import / floor, " + size, naiveAt(messages, "2.5", "3.5"), 1.4, imported + "project",
                imported + "floor");
    table.ratio("second import / floor's first, " + size, naiveAt(messages, "2.3", "3.4"), 1.2, imported + "again",
                imported + "floor");
}

void addPeersOf(TableMaker& table, int messages) {
    const std::string size = ", " + sizeName(messages);
    const std::string exported = "export " + std::to_string(messages) + " ";
    const std::string imported = "import " + std::to_string(messages) + " ";
    table.ratio("`sqlite3 -json` dump of every table / export floor" + size, "", 0, exported + "shell",
                exported + "floor");
    table.ratio("Python, same package / export floor" + size, "", 0, exported + "python", exported + "floor");
    table.ratio("`vacuum into` / export floor" + size, "", 0, exported + "vacuum", exported + "floor");
    table.ratio("`cp` of the database / export floor" + size, "", 0, exported + "copy", exported + "floor");
    table.ratio("`sqlite3` shell, json_each(readfile()) / import floor" + size, "", 0, imported + "shell",
                imported + "floor");
    table.ratio("Python, same rows / import floor" + size, "", 0, imported + "python", imported + "floor");
}

Row diskRow(const std::string& work, const std::string& reach, double syncs, double bytes, bool reached) {
    constexpr double kKibibyte = 1024;
    return {work, "", reach, shortNumber(syncs) + " syncs", shortNumber(bytes / kKibibyte) + " KiB written", reached};
}

}  // namespace

std::string shortNumber(double value) {
    const double size = std::fabs(value);
    return format(size >= 100 ? "%.0f" : size >= 10 ? "%.1f" : "%.2f", value);
}

std::string duration(double seconds) {
    return seconds >= 1 ? format("%.2f s", seconds) : format("%.1f ms", seconds * 1000);
}

std::vector<Row> makeTable(const Settings& settings, const Results& results) {
    TableMaker table(settings, results);
    if (!settings.sizes.empty()) {
        if (table.smaller() != table.larger()) addSize(table, table.smaller());
        addSize(table, table.larger());
        table.exponent("growth exponent of export", "1.04", 1.07, "export ", " project", table.smaller(),
                       table.larger());
        table.exponent("growth exponent of import", "1.22", 1.07, "import ", " project", table.smaller(),
                       table.larger());
    }
    if (settings.oneDaySizes.size() >= 2)
        table.exponent("growth exponent, all messages of one day", "1.97", 1.07, "one-day ", "",
                       settings.oneDaySizes.front(), settings.oneDaySizes.back());
    table.ratio("import of " + std::to_string(settings.manyConversations) + " conversations of 50 / floor", "1.38",
                0.65, "many project", "many floor");
    if (!settings.sizes.empty()) {
        table.memory("peak memory per further message, export", "515 B", 540, "export ");
        table.memory("peak memory per further message, import", "500 B", 530, "import ");
    }
    for (const int messages : settings.sizes) {
        const std::string prefix = "keyed " + std::to_string(messages) + " ";
        const std::string size = ", " + sizeName(messages);
        table.ratio("export of encrypted / of plain databases" + size, "1.4", 1.4, prefix + "export-keyed",
                    prefix + "export");
        table.ratio("import into encrypted / into plain databases" + size, "1.3", 1.3, prefix + "import-keyed",
                    prefix + "import");
    }
    table.derivations("key derivations in an export (two databases)", "export", 2);
    table.derivations("key derivations in an import (one database)", "import", 1);
    table.ratio("tree walk with decryption of " + std::to_string(settings.treeFiles) + " files / `cp -r`", "about 100",
                3, "walk project", "walk copy");
    table.ratio("messages of a tree / of a package", "", 1.1, "tree-messages tree", "tree-messages package");
    table.ratio("export of " + std::to_string(settings.attachments) + " attachments / `cp -r`", "", 1.3,
                "attachments project", "attachments copy");
    return table.rows;
}

std::vector<Row> makePeerTable(const Settings& settings, const Results& results) {
    TableMaker table(settings, results);
    if (settings.sizes.empty()) return {};
    if (table.smaller() != table.larger()) addPeersOf(table, table.smaller());
    addPeersOf(table, table.larger());
    return table.rows;
}

std::vector<Row> makeTreeImportTable(const Results& results) {
    std::vector<Row> rows;
    const auto part = [&results](const char* name) -> const Costs& {
        return results.at(std::string("tree-import ") + name);
    };
    const auto add = [&rows](const char* work, double cpu, double wall) {
        rows.push_back({work, "", "", duration(cpu) + " CPU", duration(wall) + " wall", true});
    };
    if (results.count("tree-import import") == 0) return rows;
    const auto whole = [&](const char* work, const Costs& costs) { add(work, costs.cpu(), costs.wall()); };
    const Costs& all = part("import");
    const Costs& walk = part("walk");
    const Costs& read = part("read");
    whole("`cp -r` of the encrypted files", part("copy"));
    whole("walk and decryption", walk);
    whole("reading and parsing the decrypted files", read);
    add("the rest of the import: inserting", all.cpu() - walk.cpu() - read.cpu(),
        all.wall() - walk.wall() - read.wall());
    whole("plain insert of the same rows (`insert ... select`, encrypted database)", part("insert"));
    whole("the whole import", all);
    return rows;
}

std::vector<Row> makeDiskTable(const ImportWrites& writes) {
    constexpr double kFew = 4;
    return {diskRow("per new conversation of 50 messages", "at most 4 syncs", writes.newSyncs, writes.newBytes,
                    writes.newSyncs <= kFew),
            diskRow("per existing conversation, 50 new messages", "at most 4 syncs", writes.existingSyncs,
                    writes.existingBytes, writes.existingSyncs <= kFew),
            diskRow("per existing conversation, nothing new", "", writes.repeatedSyncs, writes.repeatedBytes, true)};
}

}  // namespace bench
