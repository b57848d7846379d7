#include "bench/driver/report.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "bench/driver/svg_plot.h"
#include "host/json/json_owner.h"
#include "host/json/json_text.h"

namespace bench {
namespace {

std::string table(const std::vector<Row>& rows, const std::string& title) {
    if (rows.empty()) return {};
    std::string text = "\n### " + title +
                       "\n\n| work | naive | reach | here | fastest | both sides | |\n|---|---|---|---|---|---|---|\n";
    for (const Row& row : rows) {
        const char* mark = row.reach.empty() ? "" : row.reached ? "reached" : "**not reached**";
        text += "| " + row.work + " | " + row.naive + " | " + row.reach + " | " + row.here + " | " + row.fastest +
                " | " + row.sides + " | " + mark + " |\n";
    }
    return text;
}

// A JSON document that is written from front to back.
class JsonText {
public:
    JsonText& begin(char bracket) {
        separate();
        text_ += bracket;
        first_ = true;
        return *this;
    }
    JsonText& end(char bracket) {
        text_ += bracket;
        first_ = false;
        return *this;
    }
    JsonText& key(const std::string& name) {
        separate();
        tools::appendJsonText(text_, name);
        text_ += ":";
        first_ = true;
        return *this;
    }
    JsonText& value(const std::string& text) {
        separate();
        tools::appendJsonText(text_, text);
        return *this;
    }
    JsonText& value(double number) {
        separate();
        tools::appendJsonNumber(text_, number);
        return *this;
    }
    std::string take() const { return std::string(text_.text()) + "\n"; }

private:
    void separate() {
        if (!first_) text_ += ",\n";
        first_ = false;
    }

    tools::TextBuffer text_;
    bool first_ = true;
};

void addRows(JsonText& json, const std::string& name, const std::vector<Row>& rows) {
    json.key(name).begin('[');
    for (const Row& row : rows) {
        json.begin('{');
        json.key("work").value(row.work).key("reach").value(row.reach).key("here").value(row.here);
        json.key("fastest")
            .value(row.fastest)
            .key("sides")
            .value(row.sides)
            .key("reached")
            .value(row.reached ? "yes" : "no")
            .end('}');
    }
    json.end(']');
}

void addCosts(JsonText& json, const Results& results) {
    json.key("costs").begin('{');
    for (const auto& [name, costs] : results) {
        json.key(name).begin('[');
        for (const Cost& cost : costs.rounds()) {
            json.begin('{').key("cpuSeconds").value(cost.cpu).key("wallSeconds").value(cost.wall);
            json.key("peakBytes").value(cost.memory).end('}');
        }
        json.end(']');
    }
    json.end('}');
}

using Figure = double (*)(const Costs&);

std::string sizePlot(const Settings& settings, const Results& results, Plot plot, Figure figure) {
    const std::vector<Line> kinds = {{"export", "#1b6ca8", false, {}}, {"import", "#b8352c", false, {}}};
    for (const Line& kind : kinds) {
        for (const std::string contender : {"project", "floor"}) {
            Line line = kind;
            line.name += contender == "floor" ? ", floor" : "";
            line.dashed = contender == "floor";
            for (const int messages : settings.sizes) {
                const auto found = results.find(kind.name + " " + std::to_string(messages) + " " + contender);
                if (found != results.end()) line.points.emplace_back(messages, figure(found->second));
            }
            plot.lines.push_back(line);
        }
    }
    return drawPlot(plot);
}

double numberAt(const JSON_Object* object, const char* key) {
    return json_object_get_number(object, key);
}

Costs readCosts(const JSON_Array* rounds) {
    Costs costs;
    for (std::size_t i = 0; i < json_array_get_count(rounds); ++i) {
        const JSON_Object* cost = json_array_get_object(rounds, i);
        costs.add({numberAt(cost, "cpuSeconds"), numberAt(cost, "wallSeconds"), numberAt(cost, "peakBytes")});
    }
    return costs;
}

}  // namespace

Results readResults(const std::string& path) {
    const tools::JsonDocument document(json_parse_file(path.c_str()));
    const JSON_Object* costs = json_object_get_object(json_value_get_object(document.get()), "costs");
    if (costs == nullptr) throw std::runtime_error("there are no results in " + path);
    Results results;
    for (std::size_t i = 0; i < json_object_get_count(costs); ++i)
        results[json_object_get_name(costs, i)] = readCosts(json_value_get_array(json_object_get_value_at(costs, i)));
    return results;
}

std::string toMarkdown(const Report& report, const Settings& settings) {
    std::string text = "| | |\n|---|---|\n";
    for (const auto& [name, value] : report.machine)
        text += "| " + name + " | " + value + " |\n";
    text += "| Rounds | medians of " + std::to_string(settings.rounds) +
            " (small accounts: " + std::to_string(settings.roundsFor(0)) + "), interleaved |\n";
    text += table(report.rows, "Ratios");
    text += table(report.disk, "Syncs and bytes of an import");
    text += table(report.treeImport, report.treeImportTitle);
    text += table(report.peers, "Peers");
    return text;
}

std::string toJson(const Report& report, const Settings& settings, const Results& results) {
    JsonText json;
    json.begin('{').key("rounds").value(settings.rounds).key("machine").begin('{');
    for (const auto& [name, value] : report.machine)
        json.key(name).value(value);
    json.end('}');
    addRows(json, "rows", report.rows);
    addRows(json, "disk", report.disk);
    addRows(json, "treeImport", report.treeImport);
    addRows(json, "peers", report.peers);
    addCosts(json, results);
    return json.end('}').take();
}

std::string timePlot(const Settings& settings, const Results& results) {
    return sizePlot(settings, results, {"CPU time of the whole process", "messages", "seconds", {}},
                    [](const Costs& costs) { return costs.cpu(); });
}

std::string memoryPlot(const Settings& settings, const Results& results) {
    constexpr double kMebibyte = 1048576;
    return sizePlot(settings, results, {"Peak memory of the process", "messages", "MiB", {}},
                    [](const Costs& costs) { return costs.memory() / kMebibyte; });
}

void writeText(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

void writePage(const std::string& path, const std::string& pattern, const std::string& tables) {
    std::ifstream file(pattern, std::ios::binary);
    std::ostringstream whole;
    whole << file.rdbuf();
    std::string page = whole.str();
    const std::string mark = "@TABLES@\n";
    const std::size_t place = page.find(mark);
    if (place == std::string::npos) throw std::runtime_error("no place for the tables in " + pattern);
    writeText(path, page.replace(place, mark.size(), tables));
}

}  // namespace bench
