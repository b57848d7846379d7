#include "app/report/run_report.h"

#include <array>
#include <cmath>
#include <iostream>
#include <string_view>
#include <utility>

#include "app/base/exit_codes.h"
#include "app/base/json_texts.h"
#include "app/base/program_name.h"
#include "app/base/units.h"
#include "app/report/left_out.h"

namespace app {
namespace {

constexpr const char* kFormat = "chat-transfer run report";
constexpr int kFormatVersion = 1;

long long inMilliseconds(double seconds) {
    constexpr double kPerSecond = 1000;
    return std::llround(seconds * kPerSecond);
}

// In UTC, by RFC 3339.
std::string timeText(std::time_t time) {
    std::tm parts{};
    gmtime_r(&time, &parts);
    std::array<char, 32> text{};
    text[std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts)] = '\0';
    return text.data();
}

void setValue(JSON_Object* object, const char* key, const Summary::Row& row) {
    if (const auto* text = std::get_if<std::string>(&row.value)) {
        set(object, key, *text);
    } else {
        set(object, key, std::get<long long>(row.value));
    }
}

void addSummary(JSON_Object* document, const Summary& summary) {
    JSON_Object* object = addObject(document, "summary");
    for (const Summary::Row& row : summary.rows()) {
        const std::size_t dot = row.key.find('.');
        if (dot == std::string::npos) {
            setValue(object, row.key.c_str(), row);
            continue;
        }
        const std::string subject = row.key.substr(0, dot);
        JSON_Object* inner = json_object_get_object(object, subject.c_str());
        if (inner == nullptr) inner = addObject(object, subject.c_str());
        setValue(inner, row.key.substr(dot + 1).c_str(), row);
    }
}

void addFailure(JSON_Object* document, const FailureWords& words) {
    JSON_Object* object = addObject(document, "failure");
    set(object, "what", words.what);
    set(object, "path", words.path);
    set(object, "reason", words.reason);
    set(object, "remedy", words.remedy);
}

void addPhases(JSON_Object* document, const PhaseTimes& times) {
    JSON_Array* phases = addArray(document, "phases");
    for (const PhaseTimes::Phase& phase : times.phases()) {
        JSON_Object* object = appendObject(phases);
        set(object, "name", phase.name);
        set(object, "milliseconds", inMilliseconds(phase.seconds));
    }
}

void addFindings(JSON_Object* document, const char* key, const std::vector<RunReport::Finding>& findings) {
    JSON_Array* array = addArray(document, key);
    for (const RunReport::Finding& finding : findings) {
        JSON_Object* object = appendObject(array);
        set(object, "kind", finding.kind);
        set(object, "words", finding.words);
        set(object, "count", finding.count);
        JSON_Array* first = addArray(object, "first");
        for (const std::string& line : finding.first)
            appendText(first, line);
    }
}

void addLeftOut(JSON_Object* document, const TransferReport& report) {
    JSON_Object* object = addObject(document, "leftOut");
    set(object, "count", report.skippedCount);
    JSON_Array* named = addArray(object, "named");
    for (const TransferReport::Skipped& skipped : report.skipped) {
        JSON_Object* one = appendObject(named);
        set(one, "what", skipped.what);
        set(one, "kind", std::string(chattransfer::wordOf(skipped.kind)));
        set(one, "reason", skipped.reason);
    }
}

}  // namespace

void RunReport::warn(const std::string& text) {
    app::warn(text);
    warnings_.push_back(text);
}

bool RunReport::warnOf(const std::vector<std::pair<long long, const char*>>& things) {
    bool any = false;
    for (const auto& [count, words] : things) {
        if (count == 0) continue;
        warn(grouped(count) + " " + words);
        any = true;
    }
    return any;
}

void RunReport::printSummary(const std::string& heading) const {
    std::cout << heading << '\n';
    summary.print(std::cout, seconds());
}

void RunReport::leaveOut(const TransferReport& report) {
    const TransferReport named = asGiven(report, given);
    printLeftOut(named, std::cerr);
    for (const TransferReport::Skipped& skipped : named.skipped)
        leftOut_.add(skipped);
    leftOut_.skippedCount += report.skippedCount - static_cast<long long>(report.skipped.size());
}

void RunReport::end(int exitCode) {
    exitCode_ = exitCode;
    phases.end();
}

void RunReport::end(int exitCode, FailureWords failure) {
    end(exitCode);
    failed_ = true;
    failure_ = std::move(failure);
}

const char* RunReport::outcome() const {
    if (exitCode_ == kInterrupted) return "interrupted";
    if (failed_) return "failed";
    return exitCode_ == kDone ? "done" : "incomplete";
}

std::string RunReport::json() const {
    const tools::JsonDocument document(json_value_init_object());
    JSON_Object* object = json_value_get_object(document.get());
    set(object, "format", std::string(kFormat));
    set(object, "formatVersion", kFormatVersion);
    set(object, "program", std::string(kProgramName) + " " + programVersion());
    set(object, "command", command_);
    json_object_set_boolean(object, "dryRun", dryRun ? 1 : 0);
    set(object, "startedAt", timeText(begun_));
    set(object, "milliseconds", inMilliseconds(seconds()));
    set(object, "outcome", std::string(outcome()));
    set(object, "exitCode", exitCode_);
    set(object, "resultCode", hexCode(failure_.code));
    if (failed_) addFailure(object, failure_);
    addSummary(object, summary);
    addPhases(object, phases);
    JSON_Array* warnings = addArray(object, "warnings");
    for (const std::string& text : warnings_)
        appendText(warnings, text);
    addLeftOut(object, leftOut_);
    addFindings(object, "findings", findings);
    addFindings(object, "changedByRule", changedByRule);
    return prettyTextOf(document) + "\n";
}

bool isRunReport(const std::string& text) {
    const tools::JsonDocument document(json_parse_string(text.c_str()));
    const char* format = json_object_get_string(json_value_get_object(document.get()), "format");
    return format != nullptr && std::string_view(format) == kFormat;
}

}  // namespace app
