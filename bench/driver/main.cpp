// bench-compare: runs floor, project and peers in turns and says how they compare. `bench-compare --help` lists the
// arguments; docs/performance.md explains the figures.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <functional>
#include <set>

#include "bench/driver/machine.h"
#include "bench/driver/report.h"
#include "bench/driver/stages.h"

namespace fs = std::filesystem;

namespace bench {
namespace {

struct Arguments {
    bool quick = false;
    int rounds = 0;
    std::vector<int> sizes;
    std::vector<std::string> only;
    bool keep = false;
    std::string work;
    std::string results = ".";
    std::string docs;
};

Settings settingsOf(const Arguments& arguments) {
    Settings settings;
    if (arguments.quick) {
        settings.rounds = 3;
        settings.timesForSmall = 1;
        settings.sizes = {1000, 10000, 50000};
        settings.oneDaySizes = {10000, 50000};
        settings.manyConversations = 1000;
        settings.treeFiles = 500;
        settings.attachments = 500;
    } else {
        settings.sizes = {1000, 3000, 10000, 30000, 100000, 1000000};
        settings.oneDaySizes = {50000, 100000, 200000};
        settings.manyConversations = 20000;
        settings.treeFiles = 20000;
        settings.attachments = 10000;
    }
    if (arguments.rounds > 0) settings.rounds = arguments.rounds;
    if (!arguments.sizes.empty()) settings.sizes = arguments.sizes;
    return settings;
}

// A starter script in PATH would be measured as well: the interpreter names its own program.
std::string pythonProgram() {
    const std::string found = programInPath("python3");
    if (found.empty()) return {};
    const std::string scratch = fs::temp_directory_path() / ("bench-python-" + std::to_string(getpid()));
    std::string real = firstLine({{found, "-c", "import sys; print(sys.executable)"}, "", ""}, scratch);
    fs::remove(scratch);
    return real;
}

Programs findPrograms() {
    Programs programs;
    programs.folder = fs::read_symlink("/proc/self/exe").parent_path();
    programs.shell = programInPath("sqlite3");
    programs.python = pythonProgram();
    programs.peerScript = BENCH_PEER_SCRIPT;
    return programs;
}

long long freeBytes(const std::string& folder) {
    std::error_code error;
    const fs::space_info space = fs::space(folder, error);
    return error ? 0 : static_cast<long long>(space.available);
}

// A file system in memory where there is room: on a disk, what a file costs depends on what was deleted there a minute
// ago, and that would be most of a small figure. The syncs that a disk would see are counted on their own.
std::string defaultWorkFolder(bool quick) {
    constexpr long long kGibibyte = 1LL << 30;
    const long long needed = (quick ? 1 : 8) * kGibibyte;
    const std::string shared = "/dev/shm";
    const bool fits = freeBytes(shared) >= needed && availableMemory() >= needed + needed / 2;
    return fits ? shared : fs::temp_directory_path().string();
}

// A folder for accounts and packages that goes with the scope.
class WorkFolder {
public:
    explicit WorkFolder(const std::string& parent) : path_(parent + "/chat-transfer-bench-XXXXXX") {
        if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("cannot make a folder in " + parent);
    }
    ~WorkFolder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;
    WorkFolder(WorkFolder&&) = delete;
    WorkFolder& operator=(WorkFolder&&) = delete;

    const std::string& path() const { return path_; }

private:
    std::string path_;
};

struct Stage {
    std::string name;
    std::function<void(Workshop&)> run;
};

const std::vector<Stage>& raceStages() {
    static const std::vector<Stage> stages = {
        {"sizes", raceSizes}, {"one-day", raceOneDay},         {"many", raceManyConversations}, {"keyed", raceKeyed},
        {"tree", raceTree},   {"tree-import", raceTreeImport}, {"attachments", raceAttachments}};
    return stages;
}

std::string resultsFile(const Arguments& arguments) {
    return arguments.results + "/bench-results.json";
}

void makeTables(Report& report, Workshop& workshop) {
    const Settings& settings = workshop.settings();
    report.rows = makeTable(settings, workshop.results());
    report.treeImport = makeTreeImportTable(workshop.results());
    report.treeImportTitle = "Import of " + std::to_string(settings.treeFiles) + " encrypted files, " +
                             std::to_string(settings.treeMessages()) + " messages";
    report.peers = makePeerTable(settings, workshop.results());
}

// Writes what has been measured so far, so that a run that is stopped has not been for nothing. Returns the tables.
std::string writeResults(const Arguments& arguments, Report& report, Workshop& workshop) {
    const Settings& settings = workshop.settings();
    makeTables(report, workshop);
    std::string markdown = toMarkdown(report, settings);
    fs::create_directories(arguments.results);
    writeText(arguments.results + "/bench-table.md", markdown);
    writeText(resultsFile(arguments), toJson(report, settings, workshop.results()));
    const std::string pictures = arguments.docs.empty() ? arguments.results : arguments.docs;
    writeText(pictures + "/performance-time.svg", timePlot(settings, workshop.results()));
    writeText(pictures + "/performance-memory.svg", memoryPlot(settings, workshop.results()));
    if (!arguments.docs.empty()) writePage(arguments.docs + "/performance.md", BENCH_PAGE, markdown);
    return markdown;
}

void compare(const Arguments& arguments) {
    const WorkFolder folder(arguments.work.empty() ? defaultWorkFolder(arguments.quick) : arguments.work);
    Workshop workshop(folder.path() + "/w", findPrograms(), settingsOf(arguments));
    workshop.clear();
    if (arguments.keep) workshop.results() = readResults(resultsFile(arguments));
    Report report;
    report.machine = describeMachine(workshop);
    const std::set<std::string> only(arguments.only.begin(), arguments.only.end());
    const auto wanted = [&only](const std::string& name) { return only.empty() || only.count(name) != 0; };
    if (wanted("disk")) report.disk = makeDiskTable(countImportWrites(workshop));
    for (const Stage& stage : raceStages()) {
        if (!wanted(stage.name)) continue;
        stage.run(workshop);
        writeResults(arguments, report, workshop);
    }
    std::fputs(writeResults(arguments, report, workshop).c_str(), stdout);
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
    CLI::App app("Compares the project with a hand-written floor and with peers");
    bench::Arguments arguments;
    app.add_flag("--quick", arguments.quick, "Small sizes and three rounds: under two minutes");
    app.add_option("--rounds", arguments.rounds, "Interleaved rounds (default 5, quick 3)");
    app.add_option("--sizes", arguments.sizes, "Messages of the accounts, rising; the table speaks of the last two")
        ->delimiter(',');
    app.add_option("--only", arguments.only,
                   "Stages: sizes, one-day, many, keyed, tree, tree-import, attachments, disk")
        ->delimiter(',');
    app.add_flag("--keep", arguments.keep, "Take what --only leaves out from the results of the run before");
    app.add_option("--work", arguments.work,
                   "Folder for the accounts and packages (default: in memory where there is room)");
    app.add_option("--results", arguments.results, "Folder for the table, the raw figures and the plots");
    app.add_option("--docs", arguments.docs, "Folder that gets the page performance.md and its plots");
    try {
        app.parse(argc, argv);
        bench::stopOnInterrupt();
        bench::compare(arguments);
        return 0;
    } catch (const CLI::ParseError& error) {
        return app.exit(error);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "\nbench-compare: %s\n", error.what());
        return 1;
    }
}
