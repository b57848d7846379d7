#include "app/verify/verify_report.h"

#include <algorithm>
#include <ostream>

#include "app/base/printable.h"
#include "app/base/text_table.h"
#include "app/base/units.h"

namespace app {
namespace {

// More lines than anybody asks for are not kept.
constexpr std::size_t kMostLinesKept = 100000;

// For programs and for people.
struct Name {
    const char* kind;
    const char* words;
};

Name nameOf(Finding finding) {
    switch (finding) {
        case Finding::fileUnreadable:
            return {"fileUnreadable", "Files that cannot be read"};
        case Finding::tableUnreadable:
            return {"tableUnreadable", "Tables of the account that cannot be read"};
        case Finding::messageNotInPackage:
            return {"messageNotInPackage", "Messages missing in the package"};
        case Finding::messageNotInAccount:
            return {"messageNotInAccount", "Messages missing in the account"};
        case Finding::messageDiffers:
            return {"messageDiffers", "Messages that differ"};
        case Finding::contactNotInPackage:
            return {"contactNotInPackage", "Recent contacts missing in the package"};
        case Finding::contactNotInAccount:
            return {"contactNotInAccount", "Recent contacts missing in the account"};
        case Finding::contactDiffers:
            return {"contactDiffers", "Recent contacts that differ"};
        case Finding::noteNotInAccount:
            return {"noteNotInAccount", "Notes missing in the account"};
        case Finding::noteDiffers:
            return {"noteDiffers", "Notes that differ"};
        case Finding::roomNotInAccount:
            return {"roomNotInAccount", "Rooms missing in the account"};
        case Finding::attachmentNotInPackage:
            return {"attachmentNotInPackage", "Attachments missing in the package"};
        case Finding::attachmentNotInAccount:
            return {"attachmentNotInAccount", "Attachments missing in the account"};
        case Finding::attachmentDiffers:
            return {"attachmentDiffers", "Attachments that differ"};
    }
    return {"", ""};
}

Name nameOf(Rule rule) {
    switch (rule) {
        case Rule::notCarried:
            return {"notCarried", "messages have a status, burnAfterReading or localID that no package carries"};
        case Rule::securityLevelDropped:
            return {"securityLevelDropped", "messages lost their securityLevel: an import does not read it"};
        case Rule::listsDropped:
            return {"listsDropped", "messages lost limitRange or relatedUsers: an import does not read them"};
        case Rule::listsOfNumbers:
            return {"listsOfNumbers", "lists of users hold more than numbers below 2^53: a package keeps only those"};
        case Rule::idRounded:
            return {"idRounded", "ids above 2^53 were rounded: a package holds them as doubles"};
        case Rule::textCutAtNul:
            return {"textCutAtNul", "texts end at their first NUL byte"};
        case Rule::textRepaired:
            return {"textRepaired", "texts had ill-formed UTF-8, replaced by U+FFFD"};
        case Rule::idShared:
            return {"idShared",
                    "messages share their id with another one of the conversation: an import keeps the first"};
        case Rule::tableTrimmed:
            return {"tableTrimmed",
                    "messages are older than the newest 3,000 that an import keeps of a conversation beyond 5,000"};
        case Rule::contactKept:
            return {"contactKept", "recent contacts are the account's own: an import never overwrites one"};
        case Rule::contactFileReplaced:
            return {"contactFileReplaced",
                    "recent contacts stand in other files than the one that counts: an import takes those of one file"};
        case Rule::pinConverted:
            return {"pinConverted", "pins were converted from 1 to 4"};
        case Rule::attachmentNameShared:
            return {"attachmentNameShared", "attachments share their name with another one, which took its place"};
        case Rule::attachmentWithoutFolder:
            return {"attachmentWithoutFolder", "images have no folder in their name: a package has no place for them"};
        case Rule::attachmentNameRefused:
            return {"attachmentNameRefused", "attachment names lead outside their folder: they are never transferred"};
    }
    return {"", ""};
}

}  // namespace

void VerifyReport::add(Finding finding, const std::string& line) {
    Lines& lines = findings_[finding];
    ++lines.count;
    if (lines.first.size() < kMostLinesKept) lines.first.push_back(line);
}

void VerifyReport::print(std::ostream& out, long long most) const {
    printRules(out);
    printFindings(out, most);
}

std::vector<RunReport::Finding> VerifyReport::findings(long long most) const {
    std::vector<RunReport::Finding> result;
    for (const auto& [finding, lines] : findings_) {
        const auto kept = std::min(lines.first.size(), static_cast<std::size_t>(most));
        const std::vector<std::string> first(lines.first.begin(),
                                             lines.first.begin() + static_cast<std::ptrdiff_t>(kept));
        result.push_back({nameOf(finding).kind, nameOf(finding).words, lines.count, first});
    }
    return result;
}

std::vector<RunReport::Finding> VerifyReport::changedByRule() const {
    std::vector<RunReport::Finding> result;
    for (const auto& [rule, count] : rules_)
        result.push_back({nameOf(rule).kind, nameOf(rule).words, count, {}});
    return result;
}

void VerifyReport::printRules(std::ostream& out) const {
    if (rules_.empty()) return;
    out << "Changed by the rules of export and import:\n";
    TextTable table({Align::right, Align::left});
    for (const RunReport::Finding& rule : changedByRule())
        table.add({grouped(rule.count), rule.words});
    table.print(out);
}

void VerifyReport::printFindings(std::ostream& out, long long most) const {
    if (findings_.empty()) out << "Nothing is missing and nothing differs.\n";
    for (const RunReport::Finding& finding : findings(most)) {
        out << finding.words << ": " << grouped(finding.count) << '\n';
        for (const std::string& line : finding.first)
            out << "  " << printable(line) << '\n';
        const long long unnamed = finding.count - static_cast<long long>(finding.first.size());
        if (unnamed > 0) out << "  ... and " << grouped(unnamed) << " more\n";
    }
}

}  // namespace app
