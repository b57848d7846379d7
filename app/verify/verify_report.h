// What a verification found.
#pragma once

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "app/report/run_report.h"

namespace app {

/// What should not be. The order is that of the printed list.
enum class Finding {
    fileUnreadable,
    tableUnreadable,
    messageNotInPackage,
    messageNotInAccount,
    messageDiffers,
    contactNotInPackage,
    contactNotInAccount,
    contactDiffers,
    noteNotInAccount,
    noteDiffers,
    roomNotInAccount,
    attachmentNotInPackage,
    attachmentNotInAccount,
    attachmentDiffers,
};

/// What is different because the rules of export and import say so. docs/fidelity.md explains each.
enum class Rule {
    notCarried,
    securityLevelDropped,
    listsDropped,
    listsOfNumbers,
    idRounded,
    textCutAtNul,
    textRepaired,
    idShared,
    tableTrimmed,
    contactKept,
    contactFileReplaced,
    pinConverted,
    attachmentNameShared,
    attachmentWithoutFolder,
    attachmentNameRefused,
};

class VerifyReport {
public:
    void add(Finding finding, const std::string& line);
    void add(Rule rule) { ++rules_[rule]; }

    [[nodiscard]] bool hasFindings() const { return !findings_.empty(); }
    [[nodiscard]] bool hasRules() const { return !rules_.empty(); }

    /// Prints each kind with its count and at most `most` lines.
    void print(std::ostream& out, long long most) const;

    /// The same for the report of the run.
    [[nodiscard]] std::vector<RunReport::Finding> findings(long long most) const;
    [[nodiscard]] std::vector<RunReport::Finding> changedByRule() const;

private:
    struct Lines {
        long long count = 0;
        std::vector<std::string> first;
    };

    void printRules(std::ostream& out) const;
    void printFindings(std::ostream& out, long long most) const;

    std::map<Finding, Lines> findings_;
    std::map<Rule, long long> rules_;
};

}  // namespace app
